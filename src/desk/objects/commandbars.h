/// The bars of a window.
#pragma once

#include "automation/remote.h"
#include "desk/objects/barnotices.h"
#include "desk/objects/sessionobject.h"

namespace desk::objects {

class CommandBar;
class CommandBarButton;

/// The bars that clients added to one window. Names are free: two copies of a program may each have their bar.
class CommandBars : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(int Count READ count)

  public:
    using SessionObject::SessionObject;

    [[nodiscard]] int count() const { return static_cast<int>(m_bars.size()); }

    /// By position from 1, or by name (5 for a missing one).
    Q_INVOKABLE Value Item(const Value &Index);
    Q_INVOKABLE Value Add(const Value &Name = Value::Missing{}, const Value &Position = Value::Missing{},
                          const Value &MenuBar = Value::Missing{}, const Value &Temporary = Value::Missing{});
    /// The first control of that type, number and tag, the host's own commands included; Nothing where there is none.
    Q_INVOKABLE Value FindControl(const Value &Type = Value::Missing{}, const Value &Id = Value::Missing{},
                                  const Value &Tag = Value::Missing{}, const Value &Visible = Value::Missing{});

    /// For the window that shows them.
    [[nodiscard]] const std::shared_ptr<BarNotices> &notices() const { return m_notices; }
    [[nodiscard]] const QList<std::shared_ptr<CommandBar>> &bars() const { return m_bars; }
    /// What the window offers by itself.
    [[nodiscard]] const QList<std::shared_ptr<CommandBarButton>> &commands() const { return m_commands; }

    void addCommand(int id, const QString &caption, std::function<void()> command);
    bool remove(const CommandBar &bar);
    /// Takes out what a client made.
    void removeOf(automation::ClientNumber client);

  private:
    std::shared_ptr<BarNotices> m_notices = std::make_shared<BarNotices>();
    QList<std::shared_ptr<CommandBar>> m_bars;
    QList<std::shared_ptr<CommandBarButton>> m_commands;
};

} // namespace desk::objects

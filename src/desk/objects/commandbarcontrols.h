/// The buttons of a bar.
#pragma once

#include "automation/remote.h"
#include "desk/objects/barnotices.h"
#include "desk/objects/sessionobject.h"

namespace desk::objects {

class CommandBar;
class CommandBarButton;

class CommandBarControls : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(int Count READ count)

  public:
    CommandBarControls(std::weak_ptr<desk::Session> session, const CommandBar &bar,
                       std::shared_ptr<BarNotices> notices);

    [[nodiscard]] int count() const { return static_cast<int>(m_buttons.size()); }
    [[nodiscard]] const QList<std::shared_ptr<CommandBarButton>> &buttons() const { return m_buttons; }

    /// By position from 1, or by caption (5 for a missing one).
    Q_INVOKABLE Value Item(const Value &Index);
    /// A button (type 1) before the one at a position, or at the end. Fails with 5 for another type.
    Q_INVOKABLE Value Add(const Value &Type = Value::Missing{}, const Value &Id = Value::Missing{},
                          const Value &Parameter = Value::Missing{}, const Value &Before = Value::Missing{},
                          const Value &Temporary = Value::Missing{});

    bool remove(const CommandBarButton &button);
    void removeOf(automation::ClientNumber client);

    /// Nobody is told of their changes any more. To be called before the bar goes.
    void detach();

  private:
    /// Null once the bar has gone, and with it those who would be told.
    const CommandBar *m_bar;
    std::shared_ptr<BarNotices> m_notices;
    QList<std::shared_ptr<CommandBarButton>> m_buttons;
};

} // namespace desk::objects

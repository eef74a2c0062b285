/// The bars of a window and the buttons on them.
#pragma once

#include "automation/remote.h"
#include "desk/objects/sessionobject.h"

namespace desk::objects {

class CommandBar;
class CommandBarControls;
class CommandBars;

/// A button. What a client made goes when the client goes.
class CommandBarButton : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(int Type READ type)
    Q_PROPERTY(int Id READ id)
    Q_PROPERTY(QString Caption MEMBER m_caption)
    Q_PROPERTY(QString TooltipText MEMBER m_tooltip)
    Q_PROPERTY(QString Tag MEMBER m_tag)
    Q_PROPERTY(int FaceId MEMBER m_face)
    Q_PROPERTY(int Width MEMBER m_width)
    Q_PROPERTY(int Height MEMBER m_height)
    Q_PROPERTY(int Style MEMBER m_style)
    Q_PROPERTY(bool BeginGroup MEMBER m_beginsGroup)
    Q_PROPERTY(bool Visible MEMBER m_isVisible)
    Q_PROPERTY(bool Enabled MEMBER m_isEnabled)
    Q_PROPERTY(bool BuiltIn READ isBuiltIn)

  public:
    CommandBarButton(std::weak_ptr<desk::Session> session, int id, std::weak_ptr<CommandBarControls> owner);
    /// One of the host's own commands.
    CommandBarButton(std::weak_ptr<desk::Session> session, int id, QString caption, std::function<void()> command);

    [[nodiscard]] int type() const { return 1; }
    [[nodiscard]] int id() const { return m_id; }
    [[nodiscard]] bool isBuiltIn() const { return m_isBuiltIn; }
    [[nodiscard]] const QString &caption() const { return m_caption; }
    [[nodiscard]] automation::ClientNumber client() const { return m_client; }

    /// What a click does: tells the handlers, then does the host's own part, unless one of them cancelled it.
    Q_INVOKABLE void Execute();
    /// Fails with 0x80010108 for a button that is gone, 5 for one of the host's own.
    Q_INVOKABLE void Delete(const Value &Temporary = Value::Missing{});

  Q_SIGNALS:
    void Click(const Value &Ctrl, bool *CancelDefault);

  private:
    int m_id;
    std::weak_ptr<CommandBarControls> m_owner;
    std::function<void()> m_command;
    automation::ClientNumber m_client = automation::currentClient();
    QString m_caption;
    QString m_tooltip;
    QString m_tag;
    int m_face = 0;
    int m_width = 23;
    int m_height = 22;
    int m_style = 0;
    bool m_beginsGroup = false;
    bool m_isVisible = true;
    bool m_isEnabled = true;
    bool m_isBuiltIn = false;
};

class CommandBarControls : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(int Count READ count)

  public:
    using SessionObject::SessionObject;

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

  private:
    QList<std::shared_ptr<CommandBarButton>> m_buttons;
};

class CommandBar : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(QString Name MEMBER m_name)
    Q_PROPERTY(int Position MEMBER m_position)
    Q_PROPERTY(bool Visible MEMBER m_isVisible)
    Q_PROPERTY(bool Enabled MEMBER m_isEnabled)
    Q_PROPERTY(bool BuiltIn READ isBuiltIn)

  public:
    CommandBar(std::weak_ptr<desk::Session> session, QString name, int position, std::weak_ptr<CommandBars> owner);

    [[nodiscard]] const QString &name() const { return m_name; }
    [[nodiscard]] bool isBuiltIn() const { return false; }
    [[nodiscard]] automation::ClientNumber client() const { return m_client; }
    [[nodiscard]] CommandBarControls &buttons() { return *m_controls; }

    Q_INVOKABLE Value Controls(const Value &Index = Value::Missing{});
    /// Fails with 0x80010108 for a bar that is gone.
    Q_INVOKABLE void Delete();

  private:
    QString m_name;
    int m_position;
    std::weak_ptr<CommandBars> m_owner;
    std::shared_ptr<CommandBarControls> m_controls;
    automation::ClientNumber m_client = automation::currentClient();
    bool m_isVisible = false;
    bool m_isEnabled = true;
};

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

    void addCommand(int id, const QString &caption, std::function<void()> command);
    bool remove(const CommandBar &bar);
    /// Takes out what a client made.
    void removeOf(automation::ClientNumber client);

  private:
    QList<std::shared_ptr<CommandBar>> m_bars;
    QList<std::shared_ptr<CommandBarButton>> m_commands;
};

} // namespace desk::objects

/// A button on a bar of a window, or one of the commands that the window has by itself.
#pragma once

#include "automation/remote.h"
#include "desk/objects/sessionobject.h"

namespace desk::objects {

class CommandBarControls;

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

} // namespace desk::objects

/// A bar that a client added to a window.
#pragma once

#include "automation/remote.h"
#include "desk/objects/sessionobject.h"

namespace desk::objects {

class CommandBarControls;
class CommandBars;

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

} // namespace desk::objects

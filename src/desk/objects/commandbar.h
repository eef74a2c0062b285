/// A bar that a client added to a window.
#pragma once

#include "automation/remote.h"
#include "desk/objects/barnotices.h"
#include "desk/objects/sessionobject.h"

namespace desk::objects {

class CommandBarControls;
class CommandBars;

class CommandBar : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(QString Name READ name WRITE setName)
    Q_PROPERTY(int Position READ position WRITE setPosition)
    Q_PROPERTY(bool Visible READ isVisible WRITE setVisible)
    Q_PROPERTY(bool Enabled READ isEnabled WRITE setEnabled)
    Q_PROPERTY(bool BuiltIn READ isBuiltIn)

  public:
    CommandBar(std::weak_ptr<desk::Session> session, QString name, int position, std::weak_ptr<CommandBars> owner,
               std::shared_ptr<BarNotices> notices);
    ~CommandBar() override;

    [[nodiscard]] const QString &name() const { return m_name; }
    void setName(const QString &name) { change(m_name, name); }
    [[nodiscard]] int position() const { return m_position; }
    void setPosition(int position) { change(m_position, position); }
    [[nodiscard]] bool isVisible() const { return m_isVisible; }
    void setVisible(bool on) { change(m_isVisible, on); }
    [[nodiscard]] bool isEnabled() const { return m_isEnabled; }
    void setEnabled(bool on) { change(m_isEnabled, on); }
    [[nodiscard]] bool isBuiltIn() const { return false; }
    [[nodiscard]] automation::ClientNumber client() const { return m_client; }
    [[nodiscard]] CommandBarControls &buttons() { return *m_controls; }

    /// Nobody is told of its changes and its buttons' any more.
    void detach();

    Q_INVOKABLE Value Controls(const Value &Index = Value::Missing{});
    /// Fails with 0x80010108 for a bar that is gone.
    Q_INVOKABLE void Delete();

  private:
    template <class T>
    void change(T &member, const T &value) {
        if (member == value)
            return;
        member = value;
        tellChanged();
    }
    void tellChanged();

    QString m_name;
    int m_position;
    std::weak_ptr<CommandBars> m_owner;
    std::shared_ptr<BarNotices> m_notices;
    std::shared_ptr<CommandBarControls> m_controls;
    automation::ClientNumber m_client = automation::currentClient();
    bool m_isVisible = false;
    bool m_isEnabled = true;
};

} // namespace desk::objects

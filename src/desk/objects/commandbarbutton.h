/// A button on a bar of a window, or one of the commands that the window has by itself.
#pragma once

#include "automation/remote.h"
#include "desk/objects/barnotices.h"
#include "desk/objects/sessionobject.h"

namespace desk::objects {

class CommandBarControls;

/// A button. What a client made goes when the client goes.
class CommandBarButton : public SessionObject {
    Q_OBJECT
    Q_CLASSINFO("Events", "Click")
    Q_PROPERTY(int Type READ type)
    Q_PROPERTY(int Id READ id)
    Q_PROPERTY(QString Caption READ caption WRITE setCaption)
    Q_PROPERTY(QString TooltipText READ tooltip WRITE setTooltip)
    Q_PROPERTY(QString Tag READ tag WRITE setTag)
    Q_PROPERTY(int FaceId READ face WRITE setFace)
    Q_PROPERTY(int Width READ width WRITE setWidth)
    Q_PROPERTY(int Height READ height WRITE setHeight)
    Q_PROPERTY(int Style READ style WRITE setStyle)
    Q_PROPERTY(bool BeginGroup READ beginsGroup WRITE setBeginsGroup)
    Q_PROPERTY(bool Visible READ isVisible WRITE setVisible)
    Q_PROPERTY(bool Enabled READ isEnabled WRITE setEnabled)
    Q_PROPERTY(bool BuiltIn READ isBuiltIn)

  public:
    CommandBarButton(std::weak_ptr<desk::Session> session, int id, std::weak_ptr<CommandBarControls> owner,
                     std::shared_ptr<BarNotices> notices);
    /// One of the host's own commands.
    CommandBarButton(std::weak_ptr<desk::Session> session, int id, QString caption, std::function<void()> command,
                     std::shared_ptr<BarNotices> notices);

    [[nodiscard]] int type() const { return 1; }
    [[nodiscard]] int id() const { return m_id; }
    [[nodiscard]] bool isBuiltIn() const { return m_isBuiltIn; }
    [[nodiscard]] automation::ClientNumber client() const { return m_client; }
    [[nodiscard]] const QString &caption() const { return m_caption; }
    [[nodiscard]] const QString &tooltip() const { return m_tooltip; }
    [[nodiscard]] const QString &tag() const { return m_tag; }
    [[nodiscard]] int face() const { return m_face; }
    [[nodiscard]] int width() const { return m_width; }
    [[nodiscard]] int height() const { return m_height; }
    [[nodiscard]] int style() const { return m_style; }
    [[nodiscard]] bool beginsGroup() const { return m_beginsGroup; }
    [[nodiscard]] bool isVisible() const { return m_isVisible; }
    [[nodiscard]] bool isEnabled() const { return m_isEnabled; }

    void setCaption(const QString &text) { change(m_caption, text); }
    void setTooltip(const QString &text) { change(m_tooltip, text); }
    void setTag(const QString &text) { change(m_tag, text); }
    void setFace(int number) { change(m_face, number); }
    void setWidth(int number) { change(m_width, number); }
    void setHeight(int number) { change(m_height, number); }
    void setStyle(int number) { change(m_style, number); }
    void setBeginsGroup(bool on) { change(m_beginsGroup, on); }
    void setVisible(bool on) { change(m_isVisible, on); }
    void setEnabled(bool on) { change(m_isEnabled, on); }

    /// Nobody is told of its changes any more.
    void detach() { m_notices.reset(); }

    /// What a click does: tells the handlers, then does the host's own part, unless one of them cancelled it.
    Q_INVOKABLE void Execute();
    /// Fails with 0x80010108 for a button that is gone, 5 for one of the host's own.
    Q_INVOKABLE void Delete(const Value &Temporary = Value::Missing{});

  Q_SIGNALS:
    void Click(const Value &Ctrl, bool *CancelDefault);

  private:
    template <class T>
    void change(T &member, const T &value) {
        if (member == value)
            return;
        member = value;
        tellChanged();
    }
    void tellChanged();

    int m_id;
    std::weak_ptr<CommandBarControls> m_owner;
    std::shared_ptr<BarNotices> m_notices;
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

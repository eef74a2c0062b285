/// A window that shows an item.
#pragma once

#include "desk/objects/sessionobject.h"
#include "desk/objects/windowfactory.h"

namespace desk::objects {

class CommandBars;
class Item;

/// The events apart, since one of them is named as a member is.
class InspectorEvents : public SessionObject {
    Q_OBJECT
    Q_CLASSINFO("Events", "Close")

  public:
    using SessionObject::SessionObject;

  Q_SIGNALS:
    void Close();
};

/// The window of one item. Behaves so without a display, too.
class Inspector : public InspectorEvents {
    Q_OBJECT
    Q_PROPERTY(Value CurrentItem READ currentItem)
    Q_PROPERTY(QString Caption READ caption)
    Q_PROPERTY(int WindowState READ windowState WRITE setWindowState)
    Q_PROPERTY(int Class READ objectClass)
    Q_PROPERTY(bool IsWordMail READ isWordMail)
    Q_PROPERTY(int EditorType READ editorType)

  public:
    Inspector(std::weak_ptr<desk::Session> session, std::shared_ptr<Item> item);
    ~Inspector() override;

    [[nodiscard]] Value currentItem() const;
    [[nodiscard]] QString caption() const;
    /// 0 maximised, 1 minimised, 2 normal.
    [[nodiscard]] int windowState() const { return m_windowState; }
    void setWindowState(int state);
    [[nodiscard]] int objectClass() const { return 35; }
    [[nodiscard]] bool isWordMail() const { return false; }
    /// 2: the HTML editor.
    [[nodiscard]] int editorType() const { return 2; }
    [[nodiscard]] objects::CommandBars &bars() { return *m_bars; }
    [[nodiscard]] bool isShown() const { return m_window.isShown(); }
    [[nodiscard]] bool shows(const Item &item) const;

    Q_INVOKABLE Value CommandBars(const Value &Index = Value::Missing{});
    Q_INVOKABLE void Display();
    Q_INVOKABLE void Activate();
    /// Closes the item: 0 saves, 1 discards the changes, 2 asks.
    Q_INVOKABLE void Close(int SaveMode);

    /// Ends the window and tells so; the item is left as it is.
    void end();
    /// The session ends: whoever holds this holds an object without a window.
    void dropWindow() { m_window.close(); }

  private:
    void tellChanged();

    std::shared_ptr<Item> m_item;
    std::shared_ptr<objects::CommandBars> m_bars;
    int m_windowState = 2;
    WindowHold m_window;
    QString m_caption;
    bool m_isOpen = true;
};

} // namespace desk::objects

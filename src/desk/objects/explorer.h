/// A window that shows a folder.
#pragma once

#include "desk/objects/sessionobject.h"
#include "desk/objects/windowfactory.h"
#include "desk/store/records.h"

namespace desk::objects {

class CommandBars;
class MAPIFolder;

/// The events apart, since one of them is named as a member is.
class ExplorerEvents : public SessionObject {
    Q_OBJECT
    Q_CLASSINFO("Events", "BeforeFolderSwitch FolderSwitch SelectionChange Close")

  public:
    using SessionObject::SessionObject;

  Q_SIGNALS:
    void BeforeFolderSwitch(const Value &NewFolder, bool *Cancel);
    void FolderSwitch();
    void SelectionChange();
    void Close();
};

/// A window on a folder. Behaves so without a display, too.
class Explorer : public ExplorerEvents {
    Q_OBJECT
    Q_PROPERTY(Value CurrentFolder READ currentFolder WRITE setCurrentFolder)
    Q_PROPERTY(Value Selection READ selection)
    Q_PROPERTY(QString Caption READ caption)
    Q_PROPERTY(int WindowState READ windowState WRITE setWindowState)
    Q_PROPERTY(int Class READ objectClass)

  public:
    Explorer(std::weak_ptr<desk::Session> session, std::shared_ptr<MAPIFolder> folder);
    ~Explorer() override;

    [[nodiscard]] Value currentFolder() const;
    /// Another folder: raises `FolderSwitch` and empties the selection.
    void setCurrentFolder(const Value &folder);
    [[nodiscard]] const std::shared_ptr<MAPIFolder> &folder() const { return m_folder; }
    /// The items that are selected at this moment.
    [[nodiscard]] Value selection() const;
    [[nodiscard]] QString caption() const;
    /// 0 maximised, 1 minimised, 2 normal.
    [[nodiscard]] int windowState() const { return m_windowState; }
    void setWindowState(int state);
    [[nodiscard]] int objectClass() const { return 34; }
    [[nodiscard]] objects::CommandBars &bars() { return *m_bars; }

    Q_INVOKABLE Value CommandBars(const Value &Index = Value::Missing{});
    Q_INVOKABLE void Display();
    Q_INVOKABLE void Activate();
    Q_INVOKABLE void Close();
    /// Fails with 5 for an item that is not in the folder shown.
    Q_INVOKABLE void AddToSelection(const Value &Item);
    Q_INVOKABLE void ClearSelection();

    /// The session ends: whoever holds this holds an object without a window.
    void dropWindow() { m_window.close(); }

  private:
    void tellShown();

    std::shared_ptr<MAPIFolder> m_folder;
    std::shared_ptr<objects::CommandBars> m_bars;
    QList<ItemId> m_selected;
    int m_windowState = 2;
    WindowHold m_window;
    bool m_isOpen = true;
};

} // namespace desk::objects

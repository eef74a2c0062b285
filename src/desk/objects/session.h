/// The object model of the host, and the session behind it.
///
/// Every object that a client meets is a `SessionObject` under the host's own member names (namespace `desk::objects`).
/// The session holds what they share: the stores, the windows, the watch on new items. The desk knows nothing of the
/// programs that drive it: what is special about an item is its message class, and the form of a class comes as data.
#pragma once

#include "desk/content/mailboxes.h"

namespace desk {

class Forms;
class ItemWatch;
class Transport;
class WindowFactory;
class Windows;

namespace objects {
class Application;
class Item;
class MAPIFolder;
class NameSpace;
} // namespace objects

/// One person's work with their mailbox and the public folders.
///
/// Objects of the session know it weakly.
class Session : public Mailboxes, public std::enable_shared_from_this<Session> {
  public:
    static std::shared_ptr<Session> open(const Profile &profile);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    [[nodiscard]] std::shared_ptr<objects::Application> application();
    [[nodiscard]] std::shared_ptr<objects::NameSpace> nameSpace();
    /// The one object of a folder. Whether the folder exists shows when it is used.
    [[nodiscard]] std::shared_ptr<objects::MAPIFolder> folder(Store &store, FolderId id);
    /// An item, opened anew: it holds what is stored at this moment, and its own changes.
    [[nodiscard]] std::shared_ptr<objects::Item> item(Store &store, const ItemRecord &record);
    /// A new item that is not saved yet, with the fields of the form of its class.
    [[nodiscard]] std::shared_ptr<objects::Item> newItem(Store &store, FolderId folder, const QString &messageClass);

    [[nodiscard]] Windows &windows() { return *m_windows; }
    [[nodiscard]] ItemWatch &watch() { return *m_watch; }
    [[nodiscard]] Transport &transport() { return *m_transport; }

    /// Null where nobody sees the session.
    [[nodiscard]] WindowFactory *windowFactory() { return m_windowFactory.get(); }
    void setWindowFactory(std::unique_ptr<WindowFactory> factory);

    /// Called when a window begins to show a folder.
    std::function<void(const FolderRecord &)> folderShown;
    /// Called when a client asks the host to end.
    std::function<void()> quitAsked;
    /// Whether the host is about to end, so that nothing new is begun. Empty for no.
    std::function<bool()> isEnding;

  private:
    explicit Session(const Profile &profile);

    std::unique_ptr<WindowFactory> m_windowFactory;
    std::unique_ptr<Windows> m_windows;
    std::unique_ptr<ItemWatch> m_watch;
    std::unique_ptr<Transport> m_transport;
    std::unique_ptr<Forms> m_forms;
    std::shared_ptr<objects::Application> m_application;
    std::shared_ptr<objects::NameSpace> m_nameSpace;
    std::map<std::pair<Store *, FolderId>, std::weak_ptr<objects::MAPIFolder>> m_folders;
};

} // namespace desk

/// The handles of folders, of their items, and of the session that opens them.
#pragma once

#include "orvelle/host/items.h"

namespace host {

class Folders;
class Items;

class MAPIFolder : public Handle {
  public:
    using Handle::Handle;
    [[nodiscard]] QString Name() const { return text("Name"); }
    [[nodiscard]] QString EntryID() const { return text("EntryID"); }
    [[nodiscard]] QString StoreID() const { return text("StoreID"); }
    /// A folder, or the session above a top folder.
    [[nodiscard]] MAPIFolder Parent() const { return get("Parent"); }
    [[nodiscard]] host::Folders Folders() const;
    /// `Folders.Item(name)`; fails for a missing folder.
    [[nodiscard]] MAPIFolder Folders(const QString &name) const;
    /// The one below whose name is exactly this, in one question: a host may take a number for a position, and
    /// disregard case. Nothing for another name; fails for a missing folder.
    [[nodiscard]] MAPIFolder FolderNamed(const QString &name) const;
    [[nodiscard]] host::Items Items() const;
    /// `Items().Add(messageClass)`.
    [[nodiscard]] Item AddItem(const QString &messageClass) const {
        return ask({{"Items", {}}, {"Add", {messageClass}}});
    }
    /// `Items().Find(filter)`.
    [[nodiscard]] Item FindItem(const QString &filter) const { return ask({{"Items", {}}, {"Find", {filter}}}); }
    /// `Folders().Add(name)`, with a type as there.
    [[nodiscard]] MAPIFolder AddFolder(const QString &name) const { return ask({{"Folders", {}}, {"Add", {name}}}); }
    [[nodiscard]] MAPIFolder AddFolder(const QString &name, qint32 type) const {
        return ask({{"Folders", {}}, {"Add", {name, type}}});
    }
    /// 0 mail, 6 posts.
    [[nodiscard]] qint32 DefaultItemType() const { return number("DefaultItemType"); }
    [[nodiscard]] bool WebViewOn() const { return flag("WebViewOn"); }
    void WebViewOn(bool value) const { put("WebViewOn", value); }
    [[nodiscard]] QString WebViewURL() const { return text("WebViewURL"); }
    void WebViewURL(const QString &value) const { put("WebViewURL", value); }
};

class Folders : public Handle {
  public:
    using Handle::Handle;
    [[nodiscard]] qint32 Count() const { return number("Count"); }
    /// By name or by position from 1; fails for a missing one.
    [[nodiscard]] MAPIFolder Item(const Value &index) const { return call("Item", {index}); }
    /// The first folder whose name meets the filter, or Nothing.
    [[nodiscard]] MAPIFolder Find(const QString &filter) const { return call("Find", {filter}); }
    /// The next one after the last found; Nothing behind the last.
    [[nodiscard]] MAPIFolder FindNext() const { return call("FindNext"); }
    /// The walk from the first to the last: Nothing at the end.
    [[nodiscard]] MAPIFolder GetFirst() const { return call("GetFirst"); }
    [[nodiscard]] MAPIFolder GetNext() const { return call("GetNext"); }
    MAPIFolder Add(const QString &name) const { return call("Add", {name}); }
    /// The type is that of a default folder: 6 makes a folder for mails and posts.
    MAPIFolder Add(const QString &name, qint32 type) const { return call("Add", {name, type}); }
};

class Items : public Handle {
  public:
    using Handle::Handle;
    [[nodiscard]] qint32 Count() const { return number("Count"); }
    /// By position from 1, or by subject.
    [[nodiscard]] host::Item Item(const Value &index) const { return call("Item", {index}); }
    host::Item Add(const QString &messageClass) const { return call("Add", {messageClass}); }
    /// The first item that meets the filter, or Nothing.
    [[nodiscard]] host::Item Find(const QString &filter) const { return call("Find", {filter}); }
    /// The next one after the last found; Nothing behind the last.
    [[nodiscard]] host::Item FindNext() const { return call("FindNext"); }
    [[nodiscard]] MAPIFolder Parent() const { return get("Parent"); }
};

class NameSpace : public Handle {
  public:
    using Handle::Handle;
    [[nodiscard]] host::Folders Folders() const { return get("Folders"); }
    [[nodiscard]] MAPIFolder Folders(const QString &name) const { return call("Folders", {name}); }
    /// 3 deleted items, 4 outbox, 5 sent items, 6 inbox, 9 calendar, 10 contacts, 13 tasks, 16 drafts.
    [[nodiscard]] MAPIFolder GetDefaultFolder(qint32 type) const { return call("GetDefaultFolder", {type}); }
    /// `GetDefaultFolder(type).FindItem(filter)`.
    [[nodiscard]] Item FindItem(qint32 type, const QString &filter) const {
        return ask({{"GetDefaultFolder", {type}}, {"Items", {}}, {"Find", {filter}}});
    }
    /// The default folder, and a new item in it; Nothing where the host makes none. Fails where there is no such
    /// folder.
    [[nodiscard]] std::pair<MAPIFolder, Item> AddItem(qint32 type, const QString &messageClass) const {
        const automation::Question folder{"GetDefaultFolder", {type}};
        const auto outcomes = askAll({{folder}, {folder, {"Items", {}}, {"Add", {messageClass}}}});
        const MAPIFolder found = outcomes.at(0).value();
        return {found, AttemptOr([&] { return Item(outcomes.at(1).value()); }, Item())};
    }
    [[nodiscard]] MAPIFolder GetFolderFromID(const QString &entryID) const {
        return call("GetFolderFromID", {entryID});
    }
    [[nodiscard]] MAPIFolder GetFolderFromID(const QString &entryID, const QString &storeID) const {
        return call("GetFolderFromID", {entryID, storeID});
    }
    [[nodiscard]] Item GetItemFromID(const QString &entryID) const { return call("GetItemFromID", {entryID}); }
    [[nodiscard]] Item GetItemFromID(const QString &entryID, const QString &storeID) const {
        return call("GetItemFromID", {entryID, storeID});
    }
    [[nodiscard]] Recipient CreateRecipient(const QString &name) const { return call("CreateRecipient", {name}); }
    [[nodiscard]] MAPIFolder GetSharedDefaultFolder(const Recipient &recipient, qint32 type) const {
        return call("GetSharedDefaultFolder", {recipient, type});
    }
    /// Lets the person choose; Nothing on cancel.
    [[nodiscard]] MAPIFolder PickFolder() const { return call("PickFolder"); }
};

inline host::Folders MAPIFolder::Folders() const { return get("Folders"); }
inline MAPIFolder MAPIFolder::Folders(const QString &name) const { return call("Folders", {name}); }
inline MAPIFolder MAPIFolder::FolderNamed(const QString &name) const {
    const auto outcomes = askAll({{{"Folders", {name}}}, {{"Folders", {name}}, {"Name", {}}}});
    const MAPIFolder found = outcomes.at(0).value();
    return found && toText(outcomes.at(1).value()) == name ? found : MAPIFolder();
}
inline host::Items MAPIFolder::Items() const { return get("Items"); }
inline MAPIFolder Item::Parent() const { return get("Parent"); }
inline Item Item::Move(const MAPIFolder &folder) const { return call("Move", {folder}); }
inline MAPIFolder MailItem::SaveSentMessageFolder() const { return get("SaveSentMessageFolder"); }
inline void MailItem::SaveSentMessageFolder(const MAPIFolder &folder) const { put("SaveSentMessageFolder", folder); }

} // namespace host

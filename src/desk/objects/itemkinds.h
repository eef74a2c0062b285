/// The kinds of items, and what tells them apart.
#pragma once

#include "desk/store/store.h"

namespace desk {
class Session;
}

namespace desk::objects {

class Item;

struct ItemKind {
    /// The number of `Items.Add` and `CreateItem`.
    qint32 type;
    const char *messageClass;
    /// Where a new item of the kind is kept when no folder is named.
    SpecialFolder home;
};

/// Fails with 5 for a number that no kind has.
ItemKind kindOfType(qint32 type);

/// The kind of items that a new folder like that default folder takes, such as mail for 6, the Inbox.
/// Fails with 5.
qint32 itemTypeOfFolderType(qint32 folderType);

/// The object of the item's class: posts, contacts, appointments and tasks have their own, all other items are mail.
std::shared_ptr<Item> makeItem(std::weak_ptr<desk::Session> session, Store &store, const ItemRecord &record);

} // namespace desk::objects

/// The people that the session knows: the contacts in its contacts folders.
#pragma once

#include "desk/store/store.h"

namespace desk {

class Session;

/// One contacts folder.
struct ContactsFolder {
    Store *store;
    FolderRecord folder;
};

/// Every folder that holds contacts: the mailbox's own first, then those of the public folders.
QList<ContactsFolder> contactsFolders(Session &session);

/// The first contact with that address; with that full name.
std::optional<ItemRecord> contactByAddress(Session &session, const QString &address);
std::optional<ItemRecord> contactByName(Session &session, const QString &name);

} // namespace desk

/// Folders by their path texts, such as "\\Public Folders\Helpdesk".
#pragma once

#include "desk/store/store.h"

namespace desk {

class Mailboxes;

struct FolderPlace {
    Store *store = nullptr;
    FolderRecord folder;
};

/// The folder at a path, which may be written with slashes throughout. Fails with 0x8004010F, naming the part that is
/// missing.
FolderPlace folderAt(Mailboxes &mailboxes, const QString &path);

/// The same, with what is missing below the top folder made.
FolderPlace makeFolderAt(Mailboxes &mailboxes, const QString &path);

QString pathOf(Store &store, const FolderRecord &folder);

} // namespace desk

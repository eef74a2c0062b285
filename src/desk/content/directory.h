/// The people that the session knows: the contacts in its contacts folders.
#pragma once

#include "desk/store/store.h"

namespace desk {

class Mailboxes;

/// One contacts folder.
struct ContactsFolder {
    Store *store;
    FolderRecord folder;
};

/// The contacts of the mailboxes.
///
/// The contacts folders are those that the stores know at this moment, whoever made them, but for what lies among the
/// deleted items. Finding them costs the same however many other folders there are, so nothing is remembered.
class Directory {
  public:
    explicit Directory(Mailboxes &mailboxes) : m_mailboxes(mailboxes) {}

    /// Every folder that holds contacts: the mailbox's own first, then the others.
    QList<ContactsFolder> folders();

    /// The first contact with that address; with that full name.
    std::optional<ItemRecord> contactByAddress(const QString &address);
    std::optional<ItemRecord> contactByName(const QString &name);

  private:
    std::optional<ItemRecord> contactWith(Field field, const QString &text);

    Mailboxes &m_mailboxes;
};

} // namespace desk

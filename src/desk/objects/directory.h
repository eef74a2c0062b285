/// The people that the session knows: the contacts in its contacts folders.
#pragma once

#include "desk/store/store.h"

#include <QElapsedTimer>

namespace desk {

class Session;

/// One contacts folder.
struct ContactsFolder {
    Store *store;
    FolderRecord folder;
};

/// The contacts of the session.
///
/// Contacts folders are looked for in the mailbox and the public folders, two levels below the top and below other
/// contacts folders: a helpdesk may have ten thousand folders further down. What another process adds is seen within
/// seconds.
class Directory {
  public:
    explicit Directory(Session &session) : m_session(session) {}

    /// Every folder that holds contacts: the mailbox's own first, then the others.
    QList<ContactsFolder> folders();
    /// Looks for the folders anew at the next use.
    void forget() { m_age.invalidate(); }

    /// The first contact with that address; with that full name.
    std::optional<ItemRecord> contactByAddress(const QString &address);
    std::optional<ItemRecord> contactByName(const QString &name);

  private:
    static void collect(Store &store, FolderId parent, int levels, QList<ContactsFolder> &found);
    std::optional<ItemRecord> contactWith(Field field, const QString &text);

    Session &m_session;
    QList<ContactsFolder> m_folders;
    QElapsedTimer m_age;
};

} // namespace desk

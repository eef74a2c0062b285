/// What items hold and where they are kept: one item's fields and parts, filters over them, the profile of a person,
/// and the stores that the person works with. Nothing here knows of clients or windows.
#pragma once

#include "desk/content/profile.h"
#include "desk/store/store.h"

namespace desk {

class Directory;
class OtherMailboxes;
class StoreChanges;

/// The stores that one person works with: the own mailbox, the public folders, and the mailboxes of other people.
///
/// Invariant: a store that is open stays open as long as this object.
class Mailboxes {
  public:
    explicit Mailboxes(const Profile &profile);
    ~Mailboxes();
    Mailboxes(const Mailboxes &) = delete;
    Mailboxes &operator=(const Mailboxes &) = delete;

    [[nodiscard]] const Profile &profile() const { return m_profile; }

    [[nodiscard]] Store &mailbox() { return *m_mailbox; }
    [[nodiscard]] Store &publicStore() { return *m_public; }
    /// The mailbox first, then the public folders, then the mailboxes of other people.
    [[nodiscard]] QList<Store *> stores();
    /// Whether a store is somebody's mailbox, this person's or another's.
    [[nodiscard]] bool isMailbox(const Store &store) const { return &store != m_public.get(); }
    /// The store that an entry identifier belongs to; null where it is none of this session.
    [[nodiscard]] Store *storeOf(const QString &entryId);

    /// A default folder of the mailbox, made when it is first asked for. Fails with 0x8004010F for an unknown number.
    FolderRecord specialFolder(SpecialFolder special) { return specialFolder(*m_mailbox, special); }
    /// The same of another person's mailbox.
    static FolderRecord specialFolder(Store &mailbox, SpecialFolder special);
    /// Makes those default folders that are missing: what somebody who looks into the mailbox expects to see.
    void makeSpecialFolders();
    [[nodiscard]] bool isIn(const ItemRecord &item, Store &store, SpecialFolder special);

    [[nodiscard]] Directory &directory() { return *m_directory; }
    [[nodiscard]] OtherMailboxes &otherMailboxes() { return *m_others; }
    /// Tells of what was written to the stores. Whoever owns this object lets it look.
    [[nodiscard]] StoreChanges &changes() { return *m_changes; }

  private:
    Profile m_profile;
    std::unique_ptr<Store> m_mailbox;
    std::unique_ptr<Store> m_public;
    std::unique_ptr<OtherMailboxes> m_others;
    std::unique_ptr<Directory> m_directory;
    std::unique_ptr<StoreChanges> m_changes;
    bool m_hasSpecialFolders = false;
};

} // namespace desk

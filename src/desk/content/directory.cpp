#include "desk/content/directory.h"

#include "desk/content/mailboxes.h"

namespace desk {
namespace {

/// Whether a folder is among the deleted items, or has gone for ever in this moment.
bool isDeleted(Store &store, FolderRecord folder) {
    const std::optional<Failure> failure = Attempt([&] {
        while (folder.parent != 0 && folder.special != SpecialFolder::DeletedItems)
            folder = store.folder(folder.parent);
    });
    if (failure && failure->number() != failures::notFound)
        throw Failure(*failure);
    return failure || folder.special == SpecialFolder::DeletedItems;
}

} // namespace

QList<ContactsFolder> Directory::folders() {
    const FolderRecord own = m_mailboxes.specialFolder(SpecialFolder::Contacts);
    QList<ContactsFolder> folders{{&m_mailboxes.mailbox(), own}};
    // What other people have in their mailboxes is their own.
    for (Store *store : {&m_mailboxes.mailbox(), &m_mailboxes.publicStore()}) {
        for (const FolderRecord &folder : store->contactsFolders()) {
            const bool isOwn = store == &m_mailboxes.mailbox() && folder.id == own.id;
            if (!isOwn && !isDeleted(*store, folder))
                folders.append({store, folder});
        }
    }
    return folders;
}

std::optional<ItemRecord> Directory::contactWith(Field field, const QString &text) {
    if (text.isEmpty())
        return std::nullopt;
    for (const ContactsFolder &contacts : folders()) {
        if (const auto contact = contacts.store->find(contacts.folder.id, {{field, text}}))
            return contact;
    }
    return std::nullopt;
}

std::optional<ItemRecord> Directory::contactByAddress(const QString &address) {
    return contactWith(Field::Email1Address, address);
}

std::optional<ItemRecord> Directory::contactByName(const QString &name) { return contactWith(Field::FullName, name); }

} // namespace desk

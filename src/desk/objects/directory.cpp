#include "desk/objects/directory.h"

#include "desk/objects/session.h"

namespace desk {
namespace {

constexpr qint32 contactType = 2;

void collect(Store &store, FolderId parent, QList<ContactsFolder> &found) {
    for (const FolderRecord &folder : store.childFolders(parent)) {
        if (folder.defaultItemType == contactType)
            found.append({&store, folder});
        if (folder.special != SpecialFolder::DeletedItems)
            collect(store, folder.id, found);
    }
}

std::optional<ItemRecord> contactWith(Session &session, Field field, const QString &text) {
    if (text.isEmpty())
        return std::nullopt;
    for (const ContactsFolder &contacts : contactsFolders(session)) {
        if (const auto contact = contacts.store->find(contacts.folder.id, {{field, text}}))
            return contact;
    }
    return std::nullopt;
}

} // namespace

QList<ContactsFolder> contactsFolders(Session &session) {
    const FolderRecord own = session.specialFolder(SpecialFolder::Contacts);
    QList<ContactsFolder> found{{&session.mailbox(), own}};
    QList<ContactsFolder> others;
    for (Store *store : session.stores())
        collect(*store, store->root().id, others);
    for (const ContactsFolder &each : std::as_const(others)) {
        if (each.store != &session.mailbox() || each.folder.id != own.id)
            found.append(each);
    }
    return found;
}

std::optional<ItemRecord> contactByAddress(Session &session, const QString &address) {
    return contactWith(session, Field::Email1Address, address);
}

std::optional<ItemRecord> contactByName(Session &session, const QString &name) {
    return contactWith(session, Field::FullName, name);
}

} // namespace desk

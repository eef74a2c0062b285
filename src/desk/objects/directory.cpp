#include "desk/objects/directory.h"

#include "desk/objects/session.h"

namespace desk {
namespace {

constexpr qint32 contactType = 2;
constexpr int levelsBelowTop = 2;
constexpr qint64 freshMilliseconds = 5000;

} // namespace

void Directory::collect(Store &store, FolderId parent, int levels, QList<ContactsFolder> &found) {
    for (const FolderRecord &folder : store.childFolders(parent)) {
        const bool isContacts = folder.defaultItemType == contactType;
        if (isContacts)
            found.append({&store, folder});
        if (folder.special != SpecialFolder::DeletedItems && (isContacts || levels > 1))
            collect(store, folder.id, isContacts ? 1 : levels - 1, found);
    }
}

QList<ContactsFolder> Directory::folders() {
    if (m_age.isValid() && m_age.elapsed() < freshMilliseconds)
        return m_folders;
    const FolderRecord own = m_session.specialFolder(SpecialFolder::Contacts);
    m_folders = {{&m_session.mailbox(), own}};
    QList<ContactsFolder> all;
    for (Store *store : m_session.stores())
        collect(*store, store->root().id, levelsBelowTop, all);
    for (const ContactsFolder &each : std::as_const(all)) {
        if (each.store != &m_session.mailbox() || each.folder.id != own.id)
            m_folders.append(each);
    }
    m_age.start();
    return m_folders;
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

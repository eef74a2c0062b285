#include "desk/content/mailboxes.h"

#include "desk/content/directory.h"
#include "desk/content/othermailboxes.h"
#include "desk/content/profileaccess.h"
#include "desk/content/storechanges.h"
#include "desk/store/entryid.h"
#include "desk/store/transfer.h"

namespace desk {
namespace {

struct SpecialFolderKind {
    SpecialFolder special;
    const char *name;
    qint32 itemType;
};

constexpr std::array<SpecialFolderKind, 8> specialFolders{{
    {SpecialFolder::Inbox, "Inbox", 0},
    {SpecialFolder::Drafts, "Drafts", 0},
    {SpecialFolder::Outbox, "Outbox", 0},
    {SpecialFolder::SentItems, "Sent Items", 0},
    {SpecialFolder::DeletedItems, "Deleted Items", 0},
    {SpecialFolder::Calendar, "Calendar", 1},
    {SpecialFolder::Contacts, "Contacts", 2},
    {SpecialFolder::Tasks, "Tasks", 3},
}};

std::unique_ptr<Store> openMailbox(const Profile &profile) {
    profile.refuseLostMailbox();
    StoreOptions options;
    options.rootName = profile.rootName();
    return std::make_unique<Store>(profile.mailboxFile(), options);
}

std::unique_ptr<Store> openPublicStore(const Profile &profile, Store &mailbox) {
    profile.refuseLostPublicStore(!mailbox.childFolders(mailbox.root().id).isEmpty());
    const QString &file = profile.publicFile();
    StoreOptions options;
    options.rootName = QStringLiteral("Public Folders");
    options.sharing = storage::Sharing::Group;
    narrowPublicStore(file);
    auto store = std::make_unique<Store>(file, options);
    followStore(file);
    return store;
}

} // namespace

Mailboxes::Mailboxes(const Profile &profile)
    : m_profile(profile), m_mailbox(openMailbox(profile)), m_public(openPublicStore(profile, *m_mailbox)) {
    profile.rememberStores();
    settleTransfers(*m_mailbox, *m_public);
    FolderRecord root = m_mailbox->root();
    if (root.name != profile.rootName()) {
        root.name = profile.rootName();
        m_mailbox->saveFolder(root);
    }
    m_others = std::make_unique<OtherMailboxes>(*this);
    // Whoever needs one that can't be opened learns of it then; a running desk says so by itself.
    Attempt([&] { m_others->look(); });
    m_directory = std::make_unique<Directory>(*this);
    m_changes = std::make_unique<StoreChanges>(*this);
}

Mailboxes::~Mailboxes() = default;

QList<Store *> Mailboxes::stores() {
    QList<Store *> all{m_mailbox.get(), m_public.get()};
    if (m_others)
        all += m_others->stores();
    return all;
}

Store *Mailboxes::storeOf(const QString &entryId) {
    const std::optional<EntryId> id = EntryId::parse(entryId);
    if (!id)
        return nullptr;
    for (Store *store : stores()) {
        if (store->tag() == id->storeTag)
            return store;
    }
    return nullptr;
}

FolderRecord Mailboxes::specialFolder(Store &mailbox, SpecialFolder special) {
    if (const std::optional<FolderRecord> standing = mailbox.specialFolder(special))
        return *standing;
    const auto kind = std::find_if(specialFolders.begin(), specialFolders.end(),
                                   [&](const SpecialFolderKind &each) { return each.special == special; });
    if (kind == specialFolders.end())
        throw Failure(failures::notFound, QStringLiteral("There is no default folder of that number."));
    FolderRecord record;
    record.parent = mailbox.root().id;
    record.name = QString::fromLatin1(kind->name);
    record.defaultItemType = kind->itemType;
    record.special = special;
    const std::optional<Failure> failure = Attempt([&] { record = mailbox.addFolder(record); });
    if (!failure)
        return record;
    // Another process may have made it meanwhile; or an ordinary folder has the name and takes the part.
    if (failure->number() != failures::keyExists)
        throw Failure(*failure);
    FolderRecord standing = mailbox.findFolder(record.parent, record.name).value_or(record);
    if (standing.special == SpecialFolder::None) {
        standing.special = special;
        standing = mailbox.saveFolder(standing);
    }
    return standing;
}

void Mailboxes::makeSpecialFolders() {
    if (m_hasSpecialFolders)
        return;
    for (const SpecialFolderKind &kind : specialFolders)
        specialFolder(kind.special);
    m_hasSpecialFolders = true;
}

bool Mailboxes::isIn(const ItemRecord &item, Store &store, SpecialFolder special) {
    if (&store != m_mailbox.get())
        return false;
    const std::optional<FolderRecord> folder = m_mailbox->specialFolder(special);
    return folder && folder->id == item.folder;
}

} // namespace desk

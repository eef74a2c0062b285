#include "desk/objects/session.h"

#include "desk/objects/application.h"
#include "desk/objects/directory.h"
#include "desk/objects/forms.h"
#include "desk/objects/item.h"
#include "desk/objects/itemkinds.h"
#include "desk/objects/itemwatch.h"
#include "desk/objects/mapifolder.h"
#include "desk/objects/namespace.h"
#include "desk/objects/othermailboxes.h"
#include "desk/objects/profileaccess.h"
#include "desk/objects/transport.h"
#include "desk/objects/windows.h"
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
    StoreOptions options;
    options.rootName = profile.rootName();
    return std::make_unique<Store>(profile.mailboxFile(), options);
}

std::unique_ptr<Store> openPublicStore(const QString &file) {
    StoreOptions options;
    options.rootName = QStringLiteral("Public Folders");
    options.sharing = storage::Sharing::Group;
    narrowPublicStore(file);
    auto store = std::make_unique<Store>(file, options);
    followStore(file);
    return store;
}

} // namespace

Session::Session(const Profile &profile)
    : m_profile(profile), m_mailbox(openMailbox(profile)), m_public(openPublicStore(profile.publicFile())) {}

Session::~Session() = default;

std::shared_ptr<Session> Session::open(const Profile &profile) {
    std::shared_ptr<Session> session(new Session(profile));
    settleTransfers(session->mailbox(), session->publicStore());
    FolderRecord root = session->mailbox().root();
    if (root.name != profile.rootName()) {
        root.name = profile.rootName();
        session->mailbox().saveFolder(root);
    }
    session->m_others = std::make_unique<OtherMailboxes>(*session);
    // Whoever needs one that can't be opened learns of it then; a running desk says so by itself.
    static_cast<void>(Attempt([&] { session->m_others->look(); }));
    session->m_windows = std::make_unique<Windows>();
    session->m_watch = std::make_unique<ItemWatch>(*session);
    session->m_directory = std::make_unique<Directory>(*session);
    session->m_transport = std::make_unique<Transport>(*session);
    session->m_forms = std::make_unique<Forms>(profile.formsFolder());
    session->m_application = std::make_shared<objects::Application>(session);
    session->m_nameSpace = std::make_shared<objects::NameSpace>(session);
    return session;
}

QList<Store *> Session::stores() {
    QList<Store *> all{m_mailbox.get(), m_public.get()};
    if (m_others)
        all += m_others->stores();
    return all;
}

Store *Session::storeOf(const QString &entryId) {
    const std::optional<EntryId> id = EntryId::parse(entryId);
    if (!id)
        return nullptr;
    for (Store *store : stores()) {
        if (store->tag() == id->storeTag)
            return store;
    }
    return nullptr;
}

FolderRecord Session::specialFolder(Store &mailbox, SpecialFolder special) {
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

void Session::makeSpecialFolders() {
    if (m_hasSpecialFolders)
        return;
    for (const SpecialFolderKind &kind : specialFolders)
        specialFolder(kind.special);
    m_hasSpecialFolders = true;
}

bool Session::isIn(const ItemRecord &item, Store &store, SpecialFolder special) {
    if (&store != m_mailbox.get())
        return false;
    const std::optional<FolderRecord> folder = m_mailbox->specialFolder(special);
    return folder && folder->id == item.folder;
}

std::shared_ptr<objects::Application> Session::application() { return m_application; }
std::shared_ptr<objects::NameSpace> Session::nameSpace() { return m_nameSpace; }

std::shared_ptr<objects::MAPIFolder> Session::folder(Store &store, FolderId id) {
    std::weak_ptr<objects::MAPIFolder> &place = m_folders[{&store, id}];
    std::shared_ptr<objects::MAPIFolder> folder = place.lock();
    if (!folder) {
        folder = std::make_shared<objects::MAPIFolder>(weak_from_this(), store, id);
        place = folder;
    }
    return folder;
}

std::shared_ptr<objects::Item> Session::item(Store &store, const ItemRecord &record) {
    return objects::makeItem(weak_from_this(), store, record);
}

std::shared_ptr<objects::Item> Session::newItem(Store &store, FolderId folder, const QString &messageClass) {
    ItemRecord record;
    record.folder = folder;
    record.messageClass = messageClass;
    std::shared_ptr<objects::Item> item = objects::makeItem(weak_from_this(), store, record);
    item->fillFrom(m_forms->fieldsOf(messageClass, store.folder(folder)));
    return item;
}

} // namespace desk

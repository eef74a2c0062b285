#include "desk/objects/namespace.h"

#include "desk/content/othermailboxes.h"
#include "desk/objects/addresslists.h"
#include "desk/objects/folders.h"
#include "desk/objects/item.h"
#include "desk/objects/mapifolder.h"
#include "desk/objects/recipient.h"
#include "desk/objects/session.h"
#include "desk/objects/windowfactory.h"
#include "desk/transport/transport.h"
#include "platform/value/convert.h"

namespace desk::objects {
namespace {

/// The store of an entry identifier, if it is the one that the caller names.
Store &storeFor(Session &session, const QString &entryId, const Value &storeId) {
    Store *store = session.storeOf(entryId);
    if (!store)
        throw Failure(failures::notFound);
    const QString named = storeId.isMissing() ? QString() : toText(storeId);
    if (!named.isEmpty() && named.compare(store->storeId(), Qt::CaseInsensitive) != 0)
        throw Failure(failures::notFound);
    return *store;
}

QStringList wordsOf(const QString &name) { return name.toCaseFolded().split(u' ', Qt::SkipEmptyParts); }

/// Whether every word asked for is one of the name's: "Tester" and "tester alma" mean Alma Tester.
bool hasWords(const QString &name, const QStringList &words) {
    const QStringList all = wordsOf(name);
    return !words.isEmpty() && std::ranges::all_of(words, [&](const QString &word) { return all.contains(word); });
}

/// The mailbox of a person: the one of that very name, or the only one whose name has all the words.
Store &mailboxOf(Session &session, const Recipient &person) {
    constexpr qint32 ambiguous = failures::automation(0x80040700);
    const Profile &profile = session.profile();
    if (person.isResolved() && person.address().compare(profile.address(), Qt::CaseInsensitive) == 0)
        return session.mailbox();
    const QString name = person.name();
    QList<Store *> same;
    QList<Store *> like;
    for (Store *store : session.stores()) {
        const QString owner = session.isMailbox(*store) ? personOf(store->root().name) : QString();
        if (!owner.isEmpty() && wordsOf(owner) == wordsOf(name))
            same.append(store);
        if (hasWords(owner, wordsOf(name)))
            like.append(store);
    }
    const QList<Store *> &found = same.isEmpty() ? like : same;
    if (found.isEmpty())
        throw Failure(failures::notFound, QStringLiteral("The mailbox of %1 can't be opened from here: this profile "
                                                         "does not list it. See orvelle-desk mailbox.")
                                              .arg(name));
    if (found.size() > 1)
        throw Failure(ambiguous, QStringLiteral("There is more than one mailbox whose person is called %1. Give the "
                                                "full name, or the path of the folder.")
                                     .arg(name));
    return *found.first();
}

} // namespace

Value NameSpace::Folders(const Value &Index) {
    const auto folders = std::make_shared<objects::Folders>(weakSession());
    return Index.isMissing() ? Value(automation::wrap(folders)) : folders->Item(Index);
}

Value NameSpace::GetDefaultFolder(int FolderType) {
    const std::shared_ptr<desk::Session> open = session();
    const FolderRecord record = open->specialFolder(static_cast<SpecialFolder>(FolderType));
    return automation::wrap(open->folder(open->mailbox(), record.id));
}

Value NameSpace::GetFolderFromID(const QString &EntryID, const Value &StoreID) {
    const std::shared_ptr<desk::Session> open = session();
    Store &store = storeFor(*open, EntryID, StoreID);
    const std::optional<FolderRecord> record = store.folderByEntryId(EntryID);
    if (!record)
        throw Failure(failures::notFound);
    return automation::wrap(open->folder(store, record->id));
}

Value NameSpace::GetItemFromID(const QString &EntryID, const Value &StoreID) {
    const std::shared_ptr<desk::Session> open = session();
    Store &store = storeFor(*open, EntryID, StoreID);
    const std::optional<ItemRecord> record = store.itemByEntryId(EntryID);
    if (!record)
        throw Failure(failures::notFound);
    return automation::wrap(open->item(store, *record));
}

Value NameSpace::CreateRecipient(const QString &Name) {
    return automation::wrap(std::make_shared<Recipient>(weakSession(), Name));
}

Value NameSpace::GetSharedDefaultFolder(const Value &Recipient, int FolderType) {
    const auto person = automation::exposedOf<objects::Recipient>(Recipient);
    if (!person)
        throw Failure(failures::objectNotSet);
    const std::shared_ptr<desk::Session> open = session();
    Store &mailbox = mailboxOf(*open, *person);
    const FolderRecord record = desk::Session::specialFolder(mailbox, static_cast<SpecialFolder>(FolderType));
    return automation::wrap(open->folder(mailbox, record.id));
}

Value NameSpace::PickFolder() {
    const std::shared_ptr<desk::Session> open = session();
    WindowFactory *windows = open->windowFactory();
    const std::optional<FolderPlace> picked = windows ? windows->pickFolder(*open) : std::nullopt;
    return picked ? Value(automation::wrap(open->folder(*picked->store, picked->folder.id))) : Value::nothing();
}

Value NameSpace::CurrentUser() { return CreateRecipient(session()->profile().user()); }

Value NameSpace::AddressLists(const Value &Index) {
    const auto lists = std::make_shared<objects::AddressLists>(weakSession());
    return Index.isMissing() ? Value(automation::wrap(lists)) : lists->Item(Index);
}

int NameSpace::DeliverNow() { return session()->transport().deliverNow(); }

} // namespace desk::objects

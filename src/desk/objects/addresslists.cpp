#include "desk/objects/addresslists.h"

#include "desk/objects/addressentry.h"
#include "desk/objects/session.h"
#include "platform/value/convert.h"

namespace desk::objects {
namespace {

const QString listPrefix = QStringLiteral("00000000FE42AA0A18C71A10E8850B651C2400000300000003000000000000003000");

} // namespace

int AddressLists::count() const { return static_cast<int>(session()->directory().folders().size()); }

Value AddressLists::Item(const Value &Index) {
    const QList<ContactsFolder> folders = session()->directory().folders();
    if (!Index.isText())
        return automation::wrap(
            std::make_shared<AddressList>(weakSession(), folders.at(positionFrom(Index, folders.size()))));
    for (const ContactsFolder &folder : folders) {
        if (folder.folder.name == toText(Index))
            return automation::wrap(std::make_shared<AddressList>(weakSession(), folder));
    }
    throw Failure(failures::notFound);
}

AddressList::AddressList(std::weak_ptr<desk::Session> session, ContactsFolder folder)
    : SessionObject(std::move(session)), m_folder(std::move(folder)) {}

QString AddressList::id() const { return listPrefix + m_folder.folder.entryId; }

Value AddressList::AddressEntries(const Value &Index) {
    const auto entries = std::make_shared<objects::AddressEntries>(weakSession(), m_folder);
    return Index.isMissing() ? Value(automation::wrap(entries)) : entries->Item(Index);
}

AddressEntries::AddressEntries(std::weak_ptr<desk::Session> session, ContactsFolder folder)
    : SessionObject(std::move(session)), m_folder(std::move(folder)) {}

int AddressEntries::count() const {
    const std::shared_ptr<desk::Session> open = session();
    return static_cast<int>(m_folder.store->count(m_folder.folder.id));
}

Value AddressEntries::Item(const Value &Index) {
    const std::shared_ptr<desk::Session> open = session();
    const auto contact = Index.isText() ? m_folder.store->find(m_folder.folder.id, {{Field::FullName, toText(Index)}})
                                        : m_folder.store->nth(m_folder.folder.id, positionFrom(Index, count()) + 1);
    if (!contact)
        throw Failure(failures::notFound);
    return automation::wrap(AddressEntry::ofContact(weakSession(), *contact));
}

} // namespace desk::objects

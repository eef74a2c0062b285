#include "desk/objects/addressentries.h"

#include "desk/objects/addressentry.h"
#include "desk/objects/session.h"
#include "platform/value/convert.h"

namespace desk::objects {

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

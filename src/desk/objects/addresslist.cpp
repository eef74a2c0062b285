#include "desk/objects/addresslist.h"

#include "desk/objects/addressentries.h"

namespace desk::objects {
namespace {

const QString listPrefix = QStringLiteral("00000000FE42AA0A18C71A10E8850B651C2400000300000003000000000000003000");

} // namespace

AddressList::AddressList(std::weak_ptr<desk::Session> session, ContactsFolder folder)
    : SessionObject(std::move(session)), m_folder(std::move(folder)) {}

QString AddressList::id() const { return listPrefix + m_folder.folder.entryId; }

Value AddressList::AddressEntries(const Value &Index) {
    const auto entries = std::make_shared<objects::AddressEntries>(weakSession(), m_folder);
    return Index.isMissing() ? Value(automation::wrap(entries)) : entries->Item(Index);
}

} // namespace desk::objects

#include "desk/objects/addressentry.h"

#include "desk/content/directory.h"
#include "desk/objects/session.h"

namespace desk::objects {
namespace {

const QString smtpType = QStringLiteral("SMTP");

/// What stands before and behind a contact's entry identifier.
const QString contactPrefix =
    QStringLiteral("00000000FE42AA0A18C71A10E8850B651C24000003000000040000000000000030000000");
const QString contactSuffix = QStringLiteral("00000A");
/// Empty where the contact has an address of the directory instead.
QString internetAddress(const ItemRecord &contact) {
    return contact.email1Address.startsWith(u'/') ? QString() : contact.email1Address;
}

const QString senderPrefix = QStringLiteral("00000000812B1FA4BEA310199D6E00DD010F540200000180");

} // namespace

AddressEntry::AddressEntry(std::weak_ptr<desk::Session> session, QString name, QString address, QString type,
                           QString id)
    : SessionObject(std::move(session)), m_name(std::move(name)), m_address(std::move(address)),
      m_type(std::move(type)), m_id(std::move(id)) {}

std::shared_ptr<AddressEntry> AddressEntry::ofContact(std::weak_ptr<desk::Session> session, const ItemRecord &contact) {
    const QString name = contact.fullName.isEmpty() ? contact.subject : contact.fullName;
    const QString type = contact.email1Address.startsWith(u'/') ? QStringLiteral("EX") : smtpType;
    return std::make_shared<AddressEntry>(std::move(session), name, contact.email1Address, type,
                                          contactPrefix + contact.entryId + contactSuffix);
}

std::shared_ptr<AddressEntry> AddressEntry::ofSender(std::weak_ptr<desk::Session> session, const QString &name,
                                                     const QString &address, const QString &type) {
    const QString kind = type.isEmpty() ? smtpType : type;
    const QString parts = name + QChar(u'\0') + kind + QChar(u'\0') + address + QChar(u'\0');
    const QString id = senderPrefix + QString::fromLatin1(parts.toUtf8().toHex().toUpper());
    return std::make_shared<AddressEntry>(std::move(session), name, address, kind, id);
}

std::optional<ItemRecord> AddressEntry::contact() const {
    const std::shared_ptr<desk::Session> open = session();
    if (const auto contact = open->directory().contactByAddress(m_address))
        return contact;
    return open->directory().contactByName(m_name);
}

QString AddressEntry::Fields(int Tag) {
    constexpr quint32 smtpAddress = 0x39FE001E;
    constexpr quint32 businessTelephone = 0x3A08001E;
    constexpr quint32 department = 0x3A18001E;
    switch (static_cast<quint32>(Tag)) {
    case smtpAddress:
        if (m_type == smtpType)
            return m_address;
        return internetAddress(contact().value_or(ItemRecord()));
    case businessTelephone:
        return contact().value_or(ItemRecord()).businessTelephone;
    case department:
        return contact().value_or(ItemRecord()).department;
    default:
        throw Failure(failures::notFound, QStringLiteral("The address entry has no such field."));
    }
}

} // namespace desk::objects

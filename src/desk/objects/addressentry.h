/// One person of the address book, or whom a message came from.
#pragma once

#include "desk/objects/sessionobject.h"
#include "desk/store/records.h"

namespace desk::objects {

/// Identifiers, do not change: programs cut them. That of a contact holds the contact's entry identifier as the first
/// 48 of its last 54 characters; that of a sender is made of its name and address and holds none.
class AddressEntry : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(QString Name READ name CONSTANT)
    Q_PROPERTY(QString Address READ address CONSTANT)
    Q_PROPERTY(QString Type READ type CONSTANT)
    Q_PROPERTY(QString ID READ id CONSTANT)

  public:
    AddressEntry(std::weak_ptr<desk::Session> session, QString name, QString address, QString type, QString id);
    static std::shared_ptr<AddressEntry> ofContact(std::weak_ptr<desk::Session> session, const ItemRecord &contact);
    static std::shared_ptr<AddressEntry> ofSender(std::weak_ptr<desk::Session> session, const QString &name,
                                                  const QString &address, const QString &type);

    [[nodiscard]] QString name() const { return m_name; }
    [[nodiscard]] QString address() const { return m_address; }
    /// "SMTP", or "EX" for a person of the host's own directory.
    [[nodiscard]] QString type() const { return m_type; }
    [[nodiscard]] QString id() const { return m_id; }

    /// By property tag: 0x39FE001E the SMTP address, 0x3A08001E the business telephone, 0x3A18001E the department; of a
    /// person whom the contacts don't have, empty. Fails with 0x8004010F for another tag.
    Q_INVOKABLE QString Fields(int Tag);

  private:
    [[nodiscard]] std::optional<ItemRecord> contact() const;

    QString m_name;
    QString m_address;
    QString m_type;
    QString m_id;
};

} // namespace desk::objects

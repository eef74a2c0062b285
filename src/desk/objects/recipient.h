/// A person by name, looked up in the address book.
#pragma once

#include "desk/objects/sessionobject.h"
#include "desk/store/records.h"

namespace desk::objects {

/// Resolved when it is made, where the name is that of the mailbox's person or of a contact, or is an address.
class Recipient : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(QString Name READ name)
    Q_PROPERTY(QString Address READ address)
    Q_PROPERTY(bool Resolved READ isResolved)
    Q_PROPERTY(Value AddressEntry READ addressEntry)

  public:
    Recipient(std::weak_ptr<desk::Session> session, const QString &name);

    [[nodiscard]] QString name() const { return m_name; }
    /// Empty while it is not resolved.
    [[nodiscard]] QString address() const { return m_address; }
    [[nodiscard]] bool isResolved() const { return !m_address.isEmpty(); }
    /// Nothing while it is not resolved.
    [[nodiscard]] Value addressEntry() const;

    /// Looks again; whether it is resolved now.
    Q_INVOKABLE bool Resolve();

  private:
    QString m_name;
    QString m_address;
    std::optional<ItemRecord> m_contact;
};

} // namespace desk::objects

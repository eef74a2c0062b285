#include "desk/objects/recipient.h"

#include "desk/content/directory.h"
#include "desk/content/itemmessage.h"
#include "desk/objects/addressentry.h"
#include "desk/objects/session.h"

namespace desk::objects {

Recipient::Recipient(std::weak_ptr<desk::Session> session, const QString &name)
    : SessionObject(std::move(session)), m_name(name.trimmed()) {
    Resolve();
}

bool Recipient::Resolve() {
    if (isResolved())
        return true;
    const std::shared_ptr<desk::Session> open = session();
    if (m_name.compare(open->profile().user(), Qt::CaseInsensitive) == 0) {
        m_address = open->profile().address();
        return true;
    }
    m_contact = open->directory().contactByName(m_name);
    if (!m_contact)
        m_contact = open->directory().contactByAddress(m_name);
    if (m_contact) {
        m_address = m_contact->email1Address;
        if (!m_contact->fullName.isEmpty())
            m_name = m_contact->fullName;
        return isResolved();
    }
    const QList<Address> addresses = parseAddresses(m_name);
    if (addresses.size() == 1 && addresses.first().address.contains(u'@')) {
        m_address = addresses.first().address;
        m_name = addresses.first().display();
    }
    return isResolved();
}

Value Recipient::addressEntry() const {
    if (!isResolved())
        return Value::nothing();
    if (m_contact)
        return automation::wrap(AddressEntry::ofContact(weakSession(), *m_contact));
    return automation::wrap(AddressEntry::ofSender(weakSession(), m_name, m_address, {}));
}

} // namespace desk::objects

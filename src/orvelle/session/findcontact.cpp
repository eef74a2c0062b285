#include "orvelle/core/process.h"
#include "orvelle/session/safeutils.h"
#include "platform/scripting/components.h"

#include <QSet>

namespace {
/// How identifiers are cut out of the tails of an address entry's and an address list's `ID`. The kind of the list
/// decides which cut fits, so all are tried.
constexpr qsizetype folderTail = 48;
constexpr qsizetype longFolderTail = 92;
constexpr qsizetype contactLength = 48;
constexpr qsizetype contactTail = 54;
constexpr qsizetype longContactLength = 140;
constexpr qsizetype longContactTail = 146;

host::MAPIFolder fncFolderOfID(const QString &strID) {
    return AttemptOr([&] { return onsMAPI->GetFolderFromID(strID); }, host::MAPIFolder());
}

/// One search through the address lists.
class ContactSearch {
  public:
    ContactSearch(const host::AddressEntry &entry, QString strAddress) : m_address(std::move(strAddress)) {
        Attempt([&] { m_entryID = entry.ID(); });
        Attempt([&] { m_ticketStoreID = oufTickets->StoreID(); });
        m_contactID = m_entryID.right(contactTail).left(contactLength);
    }

    /// Looks through one list; true when the identifier named a contact, which ends the search.
    bool inList(const QString &strListID) {
        host::MAPIFolder ouf = fncFolderOfID(strListID.right(folderTail));
        if (ouf.isNothing())
            ouf = fncFolderOfID(strListID);
        if (ouf) {
            if (byID())
                return true;
            byAddress(ouf);
        }
        ouf = fncFolderOfID(strListID.right(longFolderTail));
        if (ouf.isNothing())
            return false;
        if (byID())
            return true;
        m_contactID = m_entryID.right(longContactTail).left(longContactLength);
        if (byID())
            return true;
        byAddress(ouf);
        return false;
    }

    [[nodiscard]] const host::ContactItem &found() const { return m_found; }

  private:
    /// What an identifier names does not depend on the list, so each is asked for once.
    bool byID() {
        if (m_asked.contains(m_contactID))
            return false;
        m_asked.insert(m_contactID);
        Attempt([&] { m_byID = host::ContactItem(onsMAPI->GetItemFromID(m_contactID, m_ticketStoreID).object()); });
        if (m_byID.isNothing())
            Attempt([&] { m_byID = host::ContactItem(onsMAPI->GetItemFromID(m_contactID).object()); });
        if (m_byID)
            m_found = m_byID;
        return !m_byID.isNothing();
    }

    /// A hit does not end the search: a later list can replace it.
    void byAddress(const host::MAPIFolder &ouf) {
        Attempt([&] {
            // An address is a stranger's text: a quote in it must not end the filter's.
            const QString strQuoted = QString(m_address).replace("'", "''");
            const host::Item oui = ouf.FindItem("[Email1Address] ='" + strQuoted + "'");
            if (oui)
                m_found = host::ContactItem(oui.object());
        });
    }

    QString m_entryID;
    QString m_address;
    QString m_ticketStoreID;
    QString m_contactID;
    QSet<QString> m_asked;
    host::ContactItem m_byID;
    host::ContactItem m_found;
};
} // namespace

host::ContactItem fncFindContact(const host::AddressEntry &entry) {
    return fncFindContact(entry, AttemptOr([&] { return entry.Address(); }, QString()));
}

host::ContactItem fncFindContact(const host::AddressEntry &entry, const QString &strAddress) {
    const host::Handle lists(scripting::CreateObject("SafeTessmark.AddressLists"));
    const qint32 count = toInt32(lists.get("Count"));
    ContactSearch search(entry, strAddress);
    for (qint32 i = 1; i <= count; ++i) {
        QString strListID;
        Attempt([&] { strListID = toText(host::Handle(lists.call("Item", {i})).get("ID")); });
        if (search.inList(strListID))
            break;
    }
    return search.found();
}

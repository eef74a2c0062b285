#include "orvelle/core/process.h"
#include "orvelle/session/safeutils.h"
#include "platform/scripting/components.h"

#include <QHash>

namespace {
/// How identifiers are cut out of the tails of an address entry's and an address list's `ID`. The kind of the list
/// decides which cut fits, so all are tried.
constexpr qsizetype folderTail = 48;
constexpr qsizetype longFolderTail = 92;
constexpr qsizetype contactLength = 48;
constexpr qsizetype contactTail = 54;
constexpr qsizetype longContactLength = 140;
constexpr qsizetype longContactTail = 146;

/// What an identifier named; Nothing where it named nothing.
template <class H>
H fncFound(const automation::Outcome &outcome) {
    return AttemptOr([&] { return H(host::Handle(outcome.value()).object()); }, H());
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
        const bool blnNew = !m_asked.contains(m_contactID);
        std::vector<automation::Path> questions{{{"GetFolderFromID", {strListID.right(folderTail)}}},
                                                {{"GetFolderFromID", {strListID.right(longFolderTail)}}}};
        if (blnNew)
            addContact(questions);
        const std::vector<automation::Outcome> outcomes = onsMAPI->askAll(questions);
        if (blnNew)
            keepContact(std::span(outcomes).subspan(2));

        auto ouf = fncFound<host::MAPIFolder>(outcomes.at(0));
        if (ouf.isNothing())
            ouf = AttemptOr([&] { return onsMAPI->GetFolderFromID(strListID); }, host::MAPIFolder());
        if (ouf) {
            if (byID())
                return true;
            byAddress(ouf);
        }
        ouf = fncFound<host::MAPIFolder>(outcomes.at(1));
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
        if (!m_asked.contains(m_contactID)) {
            std::vector<automation::Path> questions;
            addContact(questions);
            keepContact(onsMAPI->askAll(questions));
        }
        const host::ContactItem &contact = m_asked[m_contactID];
        if (contact)
            m_found = contact;
        return !contact.isNothing();
    }

    void addContact(std::vector<automation::Path> &questions) const {
        questions.push_back({{"GetItemFromID", {m_contactID, m_ticketStoreID}}});
        questions.push_back({{"GetItemFromID", {m_contactID}}});
    }

    void keepContact(std::span<const automation::Outcome> outcomes) {
        auto contact = fncFound<host::ContactItem>(outcomes[0]);
        if (contact.isNothing())
            contact = fncFound<host::ContactItem>(outcomes[1]);
        m_asked.insert(m_contactID, contact);
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
    QHash<QString, host::ContactItem> m_asked;
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

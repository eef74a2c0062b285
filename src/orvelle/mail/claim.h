/// What a client leaves on the items that it works on, in custom properties that no form shows: who it is, and which
/// items belong together. Every save that carries them is one of the intake's own. Without them nobody could tell,
/// after a crash, whether somebody still works on a mail, nor which half of a ticket belongs to which mail.
#pragma once

#include "orvelle/host/items.h"
#include "platform/value/datetime.h"
#include "platform/value/runningprocess.h"

#include <QString>

/// On everything that a client has begun: a claimed mail, a ticket's item, a flag item.
inline constexpr char strClaimProperty[] = "Orvelle claim";
/// On a mail, its copies and the ticket's item: the work that they belong to, which is the mail's `EntryID` as it was
/// in the monitored folder; of a reply with a word behind it, since a reply may be handled there more than once.
inline constexpr char strWorkProperty[] = "Orvelle mail";
/// On a confirmation: the work property of the mail that it confirms.
inline constexpr char strConfirmsProperty[] = "Orvelle confirms";
/// On a reply from its claim until it is filed and has its work row: `strWorkingMark`, then an empty text. The claim of
/// a new mail is its `BillingInformation`, but that of a reply goes under the ticket as it came.
inline constexpr char strFilingProperty[] = "Orvelle files this reply";
/// On a ticket's item: the work properties of the last replies that have their row in its work log.
inline constexpr char strRepliesProperty[] = "Orvelle replies";

/// Who works on an item, and since when.
struct cClaim {
    RunningProcess process = RunningProcess::own();
    DateTime moment;
    /// The mailbox that the client uses, by the identifier of its store: drafts and sent mail lie there.
    QString mailbox;
    /// The person, for people.
    QString user;

    /// Of this client, as from this moment.
    static cClaim Own();
    /// Nothing for an item without one, or with one that can't be read.
    static std::optional<cClaim> Of(const host::Item &oui);

    [[nodiscard]] QString ToString() const;
    static std::optional<cClaim> FromString(const QString &strClaim);
};

/// Writes a property without waiting for it; the item's next save carries it.
void subHint(const host::Item &oui, const char *strProperty, const QString &strText);
/// A property's text; empty where there is none.
QString fncHint(const host::Item &oui, const char *strProperty);

/// The work property of a mail that is claimed now.
QString fncWorkOf(const host::Item &oui);
/// The same of a reply. One that another client began and did not finish stays the same piece of work.
QString fncWorkOfReply(const host::Item &oui);

/// What clients have left behind that ended in the middle of their work.
///
/// Of a client it is known for certain whether it still runs, or not known at all (see `RunningProcess`): the work of
/// one that runs is no leftover, and nobody takes it.
#pragma once

#include "orvelle/host/folders.h"
#include "orvelle/mail/claim.h"

#include <QList>

struct cLeftover {
    enum class Kind {
        FlagItem,       ///< it keeps a folder from being watched
        Claimed,        ///< a mail without a ticket
        HalfTicket,     ///< a mail whose ticket's item has no number, or no row
        WholeTicket,    ///< a mail whose ticket is there, still in the monitored folder
        StrayCopy,      ///< the copy of a mail that was to go under its ticket
        Reply,          ///< not under its ticket, or without its work row
        HalfItem,       ///< a ticket's item without a number, whose mail is none of the above
        ItemWithoutRow, ///< a ticket that the database does not know
        SentMail,       ///< not under its ticket
        UnknownNumber,  ///< a mail with a number that is no ticket's
        InTheWay,       ///< an item in a monitored folder that is no mail, or has a mark of somebody's own
        Waiting,        ///< new mails in a folder that nobody watches
        RowWithoutItem, ///< an open ticket whose item is gone
        NoTicket,       ///< a subfolder for a number that is no ticket's
        NotSent         ///< a program's mail that the host's rules held back
    };
    enum class Remedy {
        Repair,      ///< it can be finished
        RepairIfOld, ///< it can be finished where its age tells that nobody works on it any more
        Person,      ///< somebody has to look
        None         ///< for information
    };

    Kind kind = Kind::InTheWay;
    Remedy remedy = Remedy::Person;
    /// A sentence for people.
    QString strText;
    /// The folder's path.
    QString strFolder;
    QString strSubject;
    /// Empty where none is known.
    QString strTicketID;
    QString strEntryID;
    /// Of the claim; else of the item's last save. The zero date where neither is known.
    DateTime dteSince;
    /// The person and the machine of the client; empty where they are not known.
    QString strClient;

    host::MAPIFolder ouf;
};

/// The word for a kind in machine-readable output.
QString fncKindName(cLeftover::Kind kind);

/// "Ticket ID" of an item; empty where it has none.
QString fncTicketIDOf(const host::Item &ouiTicket);

/// Who works on an item.
struct cWorker {
    /// Nothing where the item tells of nobody.
    std::optional<cClaim> claim;
    RunningProcess::State state = RunningProcess::State::Unknown;
    /// The person, where only the name is known.
    QString strUser;

    static cWorker Of(const host::Item &oui);
    /// Whether the work was begun with another mailbox than this one's, whose drafts and sent mail can't be seen.
    [[nodiscard]] bool IsElsewhere() const;
    /// "Ann Other on host", for people.
    [[nodiscard]] QString Name() const;
};

/// The sentence's end for what a client left: whose it was, and what is known of that one.
/// \param blnBlind  whether its confirmation can't be seen from here.
QString fncWhose(const cWorker &worker, bool blnBlind);

/// What is in a monitored folder beside new mails and the work of running clients.
/// \param intMost  after so many findings the search ends.
QList<cLeftover> fncLeftoversOfFolder(const host::MAPIFolder &ouf, const QString &strPath, qsizetype intMost);

/// How many new mails lie in a folder that no running client watches; 0 where one does.
int fncUnwatchedMails(const host::MAPIFolder &ouf);

/// Everything: the monitored folders, the ticket folder and what is below it, sent mail, and the database.
QList<cLeftover> fncAllLeftovers();

/// The items of the ticket folder that were made from a mail.
QList<host::Item> fncTicketsOfWork(const QString &strWork);

/// Why nobody watches the folders that a start could not take, as one message; empty where running clients do.
/// \param folders  the folders by their paths.
QString fncWhyNotWatched(const QList<std::pair<QString, host::MAPIFolder>> &folders);

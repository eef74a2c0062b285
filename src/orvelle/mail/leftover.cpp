// What lies in a monitored folder.

#include "orvelle/mail/leftover.h"

#include "orvelle/core/process.h"
#include "orvelle/host/snapshot.h"
#include "orvelle/mail/confirmation.h"
#include "orvelle/mail/foldermonitor.h"
#include "orvelle/mail/intake.h"
#include "orvelle/mail/reply.h"
#include "orvelle/reference/texts.h"
#include "orvelle/session/properties.h"
#include "orvelle/ticket/ticket.h"
#include "orvelle/ticket/ticketfolders.h"
#include "platform/value/convert.h"

using Kind = cLeftover::Kind;
using Remedy = cLeftover::Remedy;
using State = RunningProcess::State;

namespace {
DateTime fncLastSaved(const host::Item &oui) {
    return AttemptOr([&] { return toDateTime(oui.get("LastModificationTime")); }, DateTime());
}

/// Looks at one item of a monitored folder.
class FolderItem {
  public:
    FolderItem(const host::Item &oui, const host::MAPIFolder &ouf, const QString &strPath)
        : m_live(oui),
          m_oui(host::snapshot(
              oui, host::Questions({"MessageClass", "Subject", "BillingInformation", "EntryID", "LastModificationTime"})
                       .properties({strFilingProperty, strWorkProperty, strClaimProperty}))),
          m_ouf(ouf), m_strPath(strPath) {}

    std::optional<cLeftover> Look() {
        if (fncIsFlagItem(m_oui))
            return Flag();
        if (!fncIsMailOrPost(m_oui))
            return Made(Kind::InTheWay, Remedy::Person,
                        QString("it is of the kind %1, which becomes no ticket").arg(m_oui.MessageClass()));
        m_strMark = m_oui.BillingInformation();
        const bool blnFiling = fncHint(m_oui, strFilingProperty) == strWorkingMark;
        if (m_strMark.isEmpty() && !blnFiling)
            return std::nullopt;
        m_worker = cWorker::Of(m_oui);
        if (m_worker.state == State::Running)
            return std::nullopt;
        m_strWork = fncHint(m_oui, strWorkProperty);
        if (blnFiling || m_strWork.contains(u'-'))
            return Made(Kind::Reply, Remedy::Repair, "it is not yet with the ticket that it answers",
                        fncGetTicketIDFromSubject(m_oui.Subject()));
        if (!m_strWork.isEmpty() && m_strWork != m_oui.EntryID())
            return Made(Kind::StrayCopy, Remedy::Repair, "it is a copy that was to go under its ticket");
        return m_strMark == strWorkingMark ? Claimed() : Marked();
    }

  private:
    std::optional<cLeftover> Flag() {
        m_worker = cWorker::Of(m_oui);
        if (m_worker.state == State::Running)
            return std::nullopt;
        if (!m_worker.claim)
            m_worker.strUser = AttemptOr([&] { return m_live.Body().trimmed().left(100); }, QString());
        return Made(Kind::FlagItem, Remedy::Repair, "it says that a program watches the folder");
    }

    /// "Working...", and nothing says that it was a reply.
    std::optional<cLeftover> Claimed() {
        bool blnHalf = false;
        for (const host::Item &ouiTicket : fncTicketsOfWork(m_oui.EntryID())) {
            const QString strTicketID = fncTicketIDOf(ouiTicket);
            if (!strTicketID.isEmpty() && fncHasTicketRow(strTicketID))
                return Made(Kind::WholeTicket, Remedy::Repair, "its ticket is there, but it was not marked and moved",
                            strTicketID);
            blnHalf = true;
        }
        if (blnHalf)
            return Made(Kind::HalfTicket, Remedy::Repair, "its ticket is only half there");
        if (const QString strTicketID = fncAnsweredTicket(m_oui); m_strWork.isEmpty() && !strTicketID.isEmpty())
            return Made(Kind::Reply, Remedy::Repair, "it is not yet with the ticket that it answers", strTicketID);
        return Made(Kind::Claimed, Remedy::Repair, "it was to become a ticket, and there is none");
    }

    std::optional<cLeftover> Marked() {
        const bool blnNumber = std::ranges::all_of(m_strMark, [](QChar chr) { return chr >= u'0' && chr <= u'9'; });
        if (!blnNumber)
            return Made(
                Kind::InTheWay, Remedy::Person,
                QString("its billing information is \"%1\", which is no mark of this program").arg(m_strMark.left(60)));
        if (!fncIsTicket(m_strMark))
            return Made(Kind::UnknownNumber, Remedy::Person,
                        QString("it bears the number %1, and there is no such ticket").arg(m_strMark), m_strMark);
        return Made(Kind::WholeTicket, Remedy::Repair, "its ticket is there, but it was not moved", m_strMark);
    }

    cLeftover Made(Kind kind, Remedy remedy, const QString &strWhat, const QString &strTicketID = {}) {
        cLeftover found;
        found.kind = kind;
        found.ouf = m_ouf;
        found.strFolder = m_strPath;
        found.strSubject = m_oui.Subject();
        found.strEntryID = m_oui.EntryID();
        found.strTicketID = strTicketID;
        found.strClient = m_worker.Name();
        found.dteSince = m_worker.claim ? m_worker.claim->moment : fncLastSaved(m_oui);
        const bool blnBlind = m_worker.IsElsewhere() && kind == Kind::WholeTicket && fncConfirms();
        found.remedy =
            remedy == Remedy::Repair && (m_worker.state != State::Ended || blnBlind) ? Remedy::RepairIfOld : remedy;
        found.strText = strWhat + (remedy == Remedy::Repair ? fncWhose(m_worker, blnBlind) : QString());
        return found;
    }

    host::Item m_live;
    /// As it was when it was met.
    host::Item m_oui;
    host::MAPIFolder m_ouf;
    QString m_strPath;
    QString m_strMark;
    QString m_strWork;
    cWorker m_worker;
};

/// As far as that count.
int fncNewMails(const host::MAPIFolder &ouf, int intMost) {
    int intNew = 0;
    Attempt([&] {
        const host::Items ois = ouf.Items();
        for (qint32 i = ois.Count(); i >= 1 && intNew < intMost; --i)
            intNew += AttemptOr([&] { return fncIsNewMailItem(ois.Item(i)); }, false) ? 1 : 0;
    });
    return intNew;
}

/// Whether a running client's flag item lies in the folder.
bool fncIsWatched(const host::Items &ois) {
    for (host::Item oui = ois.Find(QString("[Subject] = '%1'").arg(strFlagSubject)); oui; oui = ois.FindNext()) {
        if (fncIsFlagItem(oui) && cWorker::Of(oui).state == State::Running)
            return true;
    }
    return false;
}
} // namespace

QString fncKindName(Kind kind) {
    switch (kind) {
    case Kind::FlagItem:
        return "flag item";
    case Kind::Claimed:
        return "mail without ticket";
    case Kind::HalfTicket:
        return "mail with half a ticket";
    case Kind::WholeTicket:
        return "mail with a ticket";
    case Kind::StrayCopy:
        return "copy of a mail";
    case Kind::Reply:
        return "reply";
    case Kind::HalfItem:
        return "half a ticket";
    case Kind::ItemWithoutRow:
        return "ticket without row";
    case Kind::SentMail:
        return "sent mail";
    case Kind::UnknownNumber:
        return "mail with an unknown number";
    case Kind::InTheWay:
        return "item in the way";
    case Kind::Waiting:
        return "new mails";
    case Kind::RowWithoutItem:
        return "row without ticket";
    case Kind::NoTicket:
        return "folder of no ticket";
    case Kind::NotSent:
        return "mail held back";
    }
    return {};
}

cWorker cWorker::Of(const host::Item &oui) {
    cWorker worker;
    worker.claim = cClaim::Of(oui);
    if (worker.claim)
        worker.state = worker.claim->process.state();
    return worker;
}

bool cWorker::IsElsewhere() const { return !claim || claim->mailbox != cClaim::Own().mailbox; }

QString cWorker::Name() const {
    if (!claim)
        return strUser;
    const QString strOf = claim->user.isEmpty() ? QString("somebody") : claim->user;
    return claim->process.host().isEmpty() ? strOf : strOf + " on " + claim->process.host();
}

QString fncTicketIDOf(const host::Item &ouiTicket) {
    return toText(fncGetOutlookValue(ouiTicket, "Ticket ID", valuetype::text, ""));
}

QString fncWhose(const cWorker &worker, bool blnBlind) {
    const QString strName = worker.Name().isEmpty() ? QString("somebody") : worker.Name();
    if (!worker.claim)
        return QString("; nothing tells whether the program of %1, which had it, still runs").arg(strName);
    const QString strSince = formatDateTime(worker.claim->moment);
    if (worker.state != State::Ended)
        return QString("; the program of %1 has it since %2, and from here nobody can tell whether that still runs")
            .arg(strName, strSince);
    const QString strEnded = QString("; the program of %1, which had it since %2, has ended").arg(strName, strSince);
    return blnBlind ? strEnded + ". Whether its confirmation was sent is seen in that person's mailbox alone: repair "
                                 "it there"
                    : strEnded;
}

QList<host::Item> fncTicketsOfWork(const QString &strWork) {
    QList<host::Item> found;
    if (strWork.isEmpty() || oufTickets->isNothing())
        return found;
    const host::Items ois = oufTickets->Items();
    const QString strFilter = QString("[%1] = %2").arg(QLatin1StringView(strWorkProperty), fncQuoted(strWork));
    for (host::Item oui = ois.Find(strFilter); oui; oui = ois.FindNext())
        found.append(oui);
    return found;
}

QList<cLeftover> fncLeftoversOfFolder(const host::MAPIFolder &ouf, const QString &strPath, qsizetype intMost) {
    QList<cLeftover> found;
    const host::Items ois = ouf.Items();
    for (qint32 i = ois.Count(); i >= 1 && found.size() < intMost; --i) {
        Attempt([&] {
            if (const auto leftover = FolderItem(ois.Item(i), ouf, strPath).Look())
                found.append(*leftover);
        });
    }
    return found;
}

int fncUnwatchedMails(const host::MAPIFolder &ouf) {
    return AttemptOr([&] { return fncIsWatched(ouf.Items()); }, false)
               ? 0
               : fncNewMails(ouf, std::numeric_limits<int>::max());
}

QString fncWhyNotWatched(const QList<std::pair<QString, host::MAPIFolder>> &folders) {
    constexpr qsizetype mostNamed = 5;
    constexpr int mostFound = 50;
    QString strText;
    for (const auto &[strPath, ouf] : folders) {
        if (AttemptOr([&] { return fncIsWatched(ouf.Items()); }, false))
            continue;
        const QList<cLeftover> found =
            AttemptOr([&] { return fncLeftoversOfFolder(ouf, strPath, mostFound); }, QList<cLeftover>());
        const int intNew = fncNewMails(ouf, mostFound);
        if (found.isEmpty() && intNew == 0)
            continue;
        strText +=
            QString("This program does not watch the folder %1, and from here no other one is seen that does: new "
                    "mail will stay there. Only an empty folder is watched, and in this one lie:")
                .arg(strPath) +
            strLineEnd;
        for (const cLeftover &each : found.first(std::min(found.size(), mostNamed)))
            strText += QString("- \"%1\": %2.").arg(each.strSubject.left(100), each.strText) + strLineEnd;
        if (intNew > 0)
            strText += QString("- %1 that no program has taken.")
                           .arg(intNew == 1 ? "a mail" : QString("%1 mails").arg(intNew)) +
                       strLineEnd;
        if (found.size() > mostNamed)
            strText += QString("- and %1%2 more.")
                           .arg(found.size() == mostFound ? "at least " : "")
                           .arg(found.size() - mostNamed) +
                       strLineEnd;
    }
    if (!strText.isEmpty())
        strText +=
            "\"ORVELLESETTINGS.exe intake\" lists all of it, and \"ORVELLESETTINGS.exe intake --repair\" finishes "
            "it. Then start this program again.";
    return strText;
}

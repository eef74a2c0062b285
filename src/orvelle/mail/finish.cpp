#include "orvelle/mail/finish.h"

#include "orvelle/core/process.h"
#include "orvelle/core/steps.h"
#include "orvelle/core/trace.h"
#include "orvelle/database/connection.h"
#include "orvelle/mail/confirmation.h"
#include "orvelle/mail/createticket.h"
#include "orvelle/mail/intake.h"
#include "orvelle/mail/reply.h"
#include "orvelle/mail/sentmail.h"
#include "orvelle/reference/settings.h"
#include "orvelle/reference/texts.h"
#include "orvelle/session/folderpath.h"
#include "orvelle/session/properties.h"
#include "orvelle/session/safeutils.h"
#include "orvelle/ticket/ticket.h"
#include "orvelle/ticket/ticketfolders.h"

using Kind = cLeftover::Kind;
using State = RunningProcess::State;

namespace {
const cFinished taken{true, "somebody else has finished it, or does"};

bool fncIsMail(const host::Item &oui) { return oui.MessageClass().toUpper() == "IPM.NOTE"; }

bool fncIsNumber(const QString &strText) {
    return !strText.isEmpty() && std::ranges::all_of(strText, [](QChar chr) { return chr >= u'0' && chr <= u'9'; });
}

bool fncLiesIn(const host::Item &oui, const host::MAPIFolder &ouf) {
    return AttemptOr([&] { return oui.Parent().EntryID() == ouf.EntryID(); }, false);
}

/// Makes the work this client's. When it was begun, and whose drafts and sent mail tell of it, stays as it was.
bool fncTakeOver(const host::Item &oui, const cWorker &worker) {
    if (worker.state == State::Running)
        return false;
    cClaim claim = worker.claim.value_or(cClaim::Own());
    claim.process = RunningProcess::own();
    if (!worker.claim)
        claim.mailbox = "unknown";
    subHint(oui, strClaimProperty, claim.ToString());
    return !Attempt([&] { oui.Save(); });
}

/// Whether the row is some other mail's: of a ticket that was closed since.
bool fncIsOfOtherMail(const QString &strTicketID) {
    const QString strFilter = QString("[BillingInformation] = %1").arg(fncQuoted(strTicketID));
    for (const QString &strPath : objSettings->EmailFolders->DicList->Items()) {
        const host::MAPIFolder ouf = fncGetFolderFromPath(strPath);
        const auto has = [&](const host::MAPIFolder &each) {
            return AttemptOr([&] { return !each.FindItem(strFilter).isNothing(); }, false);
        };
        if (ouf && (has(ouf) || has(AttemptOr([&] { return ouf.Folders("Converted"); }, host::MAPIFolder()))))
            return true;
    }
    return false;
}

/// The row that a client made before it could give the item its number, or whose item is no longer there: of that
/// subject and sender and made in that time, and no item's and no other mail's. Where several are, they are alike, and
/// each of them does.
QString fncRowLeft(const QString &strSubject, const QString &strEmail, DateTime from, DateTime to) {
    const auto adrRS = fncReturnRecordset(
        "Select strTicketID, strCustomerEmail, dteCreated from tblTickets where strTicketSubject = " +
            fncQuoted(fncCut(strSubject, ado::longestText)),
        true, true, false);
    for (; adrRS && !adrRS->IsEOF(); adrRS->MoveNext()) {
        const auto text = [&](const char *strColumn) {
            const Value value = adrRS->Fields(strColumn).Value();
            return value.isNull() ? QString() : toText(value);
        };
        const Value created = adrRS->Fields("dteCreated").Value();
        if (created.isNull() || toDateTime(created) < from || toDateTime(created) > to ||
            text("strCustomerEmail").compare(fncCut(strEmail, ado::longestText), Qt::CaseInsensitive) != 0)
            continue;
        cTicket objTicket;
        objTicket.TicketID = text("strTicketID");
        if (fncIsNumber(objTicket.TicketID) && objTicket.GetPostItem().isNothing() &&
            !fncIsOfOtherMail(objTicket.TicketID))
            return objTicket.TicketID;
    }
    return {};
}

constexpr double secondsADay = 86400;

QString fncRowOfHalf(const host::Item &ouiPost) {
    const Value created = fncGetOutlookValue(ouiPost, "Created at", valuetype::date);
    const QString strEmail = toText(fncGetOutlookValue(ouiPost, "Caller email", valuetype::text, ""));
    if (!created.holds<DateTime>())
        return {};
    const double days = toDateTime(created).days;
    return fncRowLeft(ouiPost.Subject(), strEmail, DateTime{days - 0.6 / secondsADay},
                      DateTime{days + 0.6 / secondsADay});
}

/// A ticket of the mail that somebody closed, or deleted, before the mail was finished.
QString fncRowOfMail(const host::Item &oui, const cWorker &worker) {
    // A conversion takes well under a second, on a desk that is slow some seconds.
    constexpr double longest = 600;
    if (!worker.claim)
        return {};
    const QString strEmail = AttemptOr([&] { return fncSafeMailItem(oui).Sender().Address(); }, QString());
    const double days = worker.claim->moment.days;
    return fncRowLeft(oui.Subject(), strEmail, DateTime{days - 1 / secondsADay},
                      DateTime{days + longest / secondsADay});
}

bool fncRestoreRow(const host::Item &ouiPost) {
    cTicket objTicket;
    if (!objTicket.ReadFromOutlook(ouiPost) || objTicket.TicketID.isEmpty())
        return false;
    objTicket.SaveToDB();
    return fncHasTicketRow(objTicket.TicketID);
}

struct cWhole {
    /// Empty where there is no ticket.
    QString strTicketID;
    /// It got its number here, so nobody can have been told of it.
    bool blnNew = false;
};

/// The work's ticket, which is whole then. Of several halves one is finished and the others go.
cWhole fncWholeTicket(const host::Item &ouiMail, const QString &strWork) {
    QList<host::Item> halves;
    cWhole whole;
    for (const host::Item &oui : fncTicketsOfWork(strWork)) {
        const QString strNumber = fncTicketIDOf(oui);
        if (strNumber.isEmpty())
            halves.append(oui);
        else if (whole.strTicketID.isEmpty() && (fncHasTicketRow(strNumber) || fncRestoreRow(oui)))
            whole.strTicketID = strNumber;
    }
    if (whole.strTicketID.isEmpty() && !halves.isEmpty()) {
        const host::Item oui = halves.takeFirst();
        whole.strTicketID = fncFinishSingleTicket(ouiMail, host::PostItem(oui.object()), fncRowOfHalf(oui));
        whole.blnNew = true;
    }
    for (const host::Item &oui : halves) {
        if (!whole.strTicketID.isEmpty())
            Attempt([&] { oui.Delete(); });
    }
    return whole;
}

bool fncHasCopy(const QString &strTicketID, const QString &strWork) {
    const host::MAPIFolder ouf = fncGetTicketSubFolder(strTicketID, receivedFolder);
    return AttemptOr(
        [&] {
            return !ouf.FindItem(QString("[%1] = %2").arg(QLatin1StringView(strWorkProperty), fncQuoted(strWork)))
                        .isNothing();
        },
        false);
}

class Finish {
  public:
    explicit Finish(const cLeftover &leftover) : m_leftover(leftover) {}

    cFinished Run() {
        const auto gone =
            Attempt([&] { m_oui = onsMAPI->GetItemFromID(m_leftover.strEntryID, m_leftover.ouf.StoreID()); });
        if (gone || m_oui.isNothing() || !fncLiesIn(m_oui, m_leftover.ouf))
            return taken;
        m_worker = cWorker::Of(m_oui);
        if (m_worker.state == State::Running)
            return taken;
        switch (m_leftover.kind) {
        case Kind::FlagItem:
            return Flag();
        case Kind::Claimed:
        case Kind::HalfTicket:
        case Kind::WholeTicket:
            return Mail(m_leftover.ouf);
        case Kind::StrayCopy:
            return StrayCopy();
        case Kind::Reply:
            return Reply();
        case Kind::HalfItem:
            return HalfItem();
        case Kind::ItemWithoutRow:
            return {fncRestoreRow(m_oui), "it was written to the database"};
        case Kind::SentMail:
            return SentMail();
        default:
            return {false, "somebody has to look at it"};
        }
    }

  private:
    cFinished Flag() {
        m_oui.Delete();
        return {true, "it was deleted"};
    }

    /// A mail in a monitored folder, up to its place in "Converted".
    cFinished Mail(const host::MAPIFolder &ouf) {
        const QString strWork = fncWorkOf(m_oui);
        const QString strMark = m_oui.BillingInformation();
        if (strMark.isEmpty())
            m_oui.BillingInformation(strWorkingMark);
        subHint(m_oui, strWorkProperty, strWork);
        if (!fncTakeOver(m_oui, m_worker))
            return taken;
        const cWhole whole = fncIsNumber(strMark) ? cWhole{strMark, false} : fncWholeTicket(m_oui, strWork);
        QString strTicketID = whole.strTicketID;
        if (strTicketID.isEmpty())
            strTicketID = fncRowOfMail(m_oui, m_worker);
        if (strTicketID.isEmpty()) {
            subConvertClaimed(m_oui, ouf);
            return {!fncLiesIn(m_oui, ouf), "its ticket was made"};
        }
        if (strMark != strTicketID && fncIsMail(m_oui))
            subMarkConverted(m_oui, strTicketID);
        QString strDone = QString("it is ticket %1").arg(strTicketID);
        const bool blnHasCopy = fncUsesSubFolders() && fncHasCopy(strTicketID, strWork);
        // The copy is the step behind the confirmation.
        if (fncConfirms() && !blnHasCopy)
            strDone += Confirm(strTicketID, whole.blnNew);
        if (!blnHasCopy)
            subKeepCopyUnderTicket(m_oui, strTicketID);
        subMoveToConverted(m_oui, ouf);
        if (fncLiesIn(m_oui, ouf))
            return {false, strDone + ", but could not be moved to \"Converted\""};
        return {true, strDone};
    }

    QString Confirm(const QString &strTicketID, bool blnNew) {
        if (m_worker.IsElsewhere() && !blnNew)
            return ". Nobody can tell from here whether its confirmation was sent; none was sent now";
        const Confirmation before = fncConfirmationOf(fncWorkOf(m_oui), strTicketID);
        subFinishConfirmation(m_oui, strTicketID);
        return before == Confirmation::Sent ? ", confirmed" : ", and its confirmation was sent now";
    }

    cFinished StrayCopy() {
        const QString strWork = fncHint(m_oui, strWorkProperty);
        if (!fncTakeOver(m_oui, m_worker))
            return taken;
        QString strTicketID = m_oui.BillingInformation();
        for (const host::Item &oui : fncTicketsOfWork(strWork)) {
            if (!fncIsNumber(strTicketID))
                strTicketID = fncTicketIDOf(oui);
        }
        const bool blnFiled = fncIsNumber(strTicketID) && fncUsesSubFolders() && fncHasCopy(strTicketID, strWork);
        const bool blnMailStands = AttemptOr([&] { return !onsMAPI->GetItemFromID(strWork).isNothing(); }, false);
        // A mail that somebody has moved here from another store looks like a copy, and is all that there is.
        if (!blnFiled && !blnMailStands)
            return {false,
                    "the mail that it looks like a copy of is gone; it may be that mail, moved here. Look at it"};
        if (blnFiled || !fncIsNumber(strTicketID) || !fncUsesSubFolders()) {
            m_oui.Delete();
            return {true, "it was deleted; the mail itself is there"};
        }
        m_oui.Move(fncGetTicketSubFolder(strTicketID, receivedFolder));
        return {true, QString("it was put under ticket %1").arg(strTicketID)};
    }

    cFinished Reply() {
        const QString strTicketID = fncGetTicketIDFromSubject(m_oui.Subject());
        const bool blnOpen = fncHint(m_oui, strFilingProperty) == strWorkingMark;
        const QString strWork = fncWorkOfReply(m_oui);
        subHint(m_oui, strWorkProperty, strWork);
        if (!fncTakeOver(m_oui, m_worker))
            return taken;
        if (blnOpen) {
            subAddEmailWorkItem(strTicketID, fncGetSenderName(m_oui), strWork);
            WriteWork(strTicketID);
        }
        // One that the scan met was moved first.
        const bool blnFiled =
            AttemptOr([&] { return m_leftover.ouf.Parent().Parent().EntryID() == oufTickets->EntryID(); }, false);
        if (blnFiled) {
            subEndFiling(m_oui);
        } else {
            const host::MAPIFolder ouf = fncGetTicketSubFolder(strTicketID, receivedFolder);
            if (ouf.isNothing())
                return {false, "there is no folder for it, and none could be made"};
            subFileReply(m_oui, ouf);
        }
        return {true, QString("it is filed under ticket %1").arg(strTicketID)};
    }

    /// A client that ended between the item's save and the end of the database's change leaves the row on the item
    /// alone.
    static void WriteWork(const QString &strTicketID) {
        cTicket objTicket;
        objTicket.TicketID = strTicketID;
        const host::Item ouiPost = objTicket.GetPostItem();
        if (ouiPost && objTicket.ReadFromOutlook(ouiPost) && fncIsNumber(strTicketID))
            objTicket.WorkDescs->WriteToDB(strTicketID);
    }

    cFinished HalfItem() {
        if (!fncTicketIDOf(m_oui).isEmpty())
            return taken;
        const QString strWork = fncHint(m_oui, strWorkProperty);
        host::Item ouiMail;
        Attempt([&] { ouiMail = onsMAPI->GetItemFromID(strWork); });
        if (const host::MAPIFolder ouf = fncMonitoredFolderOf(ouiMail)) {
            // The mail was released, or the next start would take it: its ticket is this one.
            m_oui = ouiMail;
            m_worker = cWorker::Of(ouiMail);
            return m_worker.state == State::Running ? taken : Mail(ouf);
        }
        if (!fncTakeOver(m_oui, m_worker))
            return taken;
        const QString strMark = AttemptOr([&] { return ouiMail.BillingInformation(); }, QString());
        if (fncIsNumber(strMark) && fncIsTicket(strMark)) {
            m_oui.Delete();
            return {true, QString("it was deleted; its mail is ticket %1").arg(strMark)};
        }
        const QString strTicketID = fncWholeTicket(ouiMail, strWork).strTicketID;
        if (strTicketID.isEmpty())
            return {false, "it could not be written to the database"};
        if (ouiMail && fncIsMail(ouiMail) && strMark.isEmpty()) {
            subMarkConverted(ouiMail, strTicketID);
            subKeepCopyUnderTicket(ouiMail, strTicketID);
        }
        return {true, QString("it is ticket %1").arg(strTicketID)};
    }

    static host::MAPIFolder fncMonitoredFolderOf(const host::Item &ouiMail) {
        if (ouiMail.isNothing())
            return {};
        for (const QString &strPath : objSettings->EmailFolders->DicList->Items()) {
            const host::MAPIFolder ouf = fncGetFolderFromPath(strPath);
            if (ouf && fncLiesIn(ouiMail, ouf))
                return ouf;
        }
        return {};
    }

    cFinished SentMail() {
        subFileSentItem(m_oui);
        return {!fncLiesIn(m_oui, m_leftover.ouf), QString("it is filed under ticket %1").arg(m_leftover.strTicketID)};
    }

    const cLeftover &m_leftover;
    host::Item m_oui;
    cWorker m_worker;
};
} // namespace

cFinished fncFinish(const cLeftover &leftover) {
    const WholeStep whole;
    subTrace("Finishing \"" + leftover.strSubject + "\": " + leftover.strText);
    cFinished finished;
    if (const auto failure = Attempt([&] { finished = Finish(leftover).Run(); }))
        return {false, failure->description()};
    return finished;
}

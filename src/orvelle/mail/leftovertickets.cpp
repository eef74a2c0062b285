// What lies in the ticket folder, below it, in the sent mail and in the database.

#include "orvelle/mail/leftover.h"

#include "orvelle/core/process.h"
#include "orvelle/database/connection.h"
#include "orvelle/host/snapshot.h"
#include "orvelle/mail/foldermonitor.h"
#include "orvelle/mail/intake.h"
#include "orvelle/reference/settings.h"
#include "orvelle/reference/texts.h"
#include "orvelle/session/folderpath.h"
#include "orvelle/session/session.h"
#include "orvelle/ticket/ticket.h"
#include "orvelle/ticket/ticketfolders.h"

#include <QSet>

using Kind = cLeftover::Kind;
using Remedy = cLeftover::Remedy;
using State = RunningProcess::State;

namespace {
struct TicketRow {
    QString strSubject;
    bool blnClosed = false;
};
using TicketRows = QHash<QString, TicketRow>;

TicketRows fncTicketRows() {
    TicketRows rows;
    const auto adrRS =
        fncReturnRecordset("Select strTicketID, strTicketSubject, blnClosed from tblTickets", true, true, false);
    for (; adrRS && !adrRS->IsEOF(); adrRS->MoveNext()) {
        const auto text = [&](const char *strColumn) {
            const Value value = adrRS->Fields(strColumn).Value();
            return value.isNull() ? QString() : toText(value);
        };
        const Value closed = adrRS->Fields("blnClosed").Value();
        rows.insert(text("strTicketID"), {text("strTicketSubject"), !closed.isNull() && toBool(closed)});
    }
    return rows;
}

/// One search through everything.
class Search {
  public:
    QList<cLeftover> Run() {
        // A client at work makes the row first and gives the item its number then. So rows of tickets that were made
        // while this went on are seen either before the items, or behind them.
        const TicketRows before = fncTicketRows();
        MonitoredFolders();
        Tickets();
        m_rows = fncTicketRows();
        ItemsWithoutRow();
        RowsWithoutItem(before);
        SubFolders();
        SentMail();
        HeldBack();
        return m_found;
    }

  private:
    cLeftover &Add(Kind kind, Remedy remedy, const QString &strText) {
        cLeftover found;
        found.kind = kind;
        found.remedy = remedy;
        found.strText = strText;
        return m_found.emplaceBack(found);
    }

    cLeftover &AddItem(Kind kind, const host::Item &oui, const host::MAPIFolder &ouf, const QString &strFolder,
                       const QString &strText) {
        cLeftover &found = Add(kind, Remedy::Repair, strText);
        found.ouf = ouf;
        found.strFolder = strFolder;
        found.strSubject = oui.Subject();
        found.strEntryID = oui.EntryID();
        return found;
    }

    static void SetWorker(cLeftover &found, const cWorker &worker) {
        found.strClient = worker.Name();
        if (worker.claim)
            found.dteSince = worker.claim->moment;
        if (worker.state != State::Ended)
            found.remedy = Remedy::RepairIfOld;
        found.strText += fncWhose(worker, false);
    }

    void MonitoredFolders() {
        constexpr qsizetype all = std::numeric_limits<qsizetype>::max();
        for (const QString &strPath : objSettings->EmailFolders->DicList->Items()) {
            const host::MAPIFolder ouf = fncGetFolderFromPath(strPath);
            if (ouf.isNothing())
                continue;
            m_found += fncLeftoversOfFolder(ouf, strPath, all);
            const int intNew = fncUnwatchedMails(ouf);
            if (intNew == 0)
                continue;
            Add(Kind::Waiting, Remedy::None,
                QString("%1 that no program has taken, in a folder that no running program watches, as far as can be "
                        "seen from here: start orvelle")
                    .arg(intNew == 1 ? "a mail" : QString("%1 mails").arg(intNew)))
                .strFolder = strPath;
        }
        for (const cLeftover &each : std::as_const(m_found))
            m_mails.insert(each.strEntryID);
    }

    void Tickets() {
        m_strTickets = fncGetFolderPath(oufTickets, onsMAPI);
        const host::Items ois = oufTickets->Items();
        for (qint32 i = ois.Count(); i >= 1; --i) {
            Attempt([&] {
                const host::Item oui = ois.Item(i);
                const host::Item seen =
                    host::snapshot(oui, host::Questions({"EntryID", "Subject"}).properties({"Ticket ID"}));
                const QString strTicketID = fncTicketIDOf(seen);
                if (strTicketID.isEmpty())
                    WithoutNumber(oui);
                else
                    m_items.insert(strTicketID, {seen.EntryID(), seen.Subject()});
            });
        }
    }

    void WithoutNumber(const host::Item &oui) {
        const QString strWork = fncHint(oui, strWorkProperty);
        // One that a person makes by hand has no number either, until it is saved in its form.
        if (strWork.isEmpty() || m_mails.contains(strWork))
            return;
        const cWorker worker = cWorker::Of(oui);
        if (worker.state == State::Running)
            return;
        SetWorker(AddItem(Kind::HalfItem, oui, oufTickets, m_strTickets, "this ticket has no number"), worker);
    }

    void ItemsWithoutRow() {
        for (auto each = m_items.cbegin(); each != m_items.cend(); ++each) {
            if (m_rows.contains(each.key()))
                continue;
            bool blnNumber = false;
            const qint32 intNumber = each.key().toInt(&blnNumber);
            const bool blnPlain = blnNumber && QString::number(intNumber) == each.key();
            cLeftover &found = Add(Kind::ItemWithoutRow, blnPlain ? Remedy::Repair : Remedy::Person,
                                   "the database does not know this ticket");
            found.ouf = oufTickets;
            found.strFolder = m_strTickets;
            found.strEntryID = each->strEntryID;
            found.strSubject = each->strSubject;
            found.strTicketID = each.key();
        }
    }

    void RowsWithoutItem(const TicketRows &rows) {
        for (auto row = rows.cbegin(); row != rows.cend(); ++row) {
            if (row->blnClosed || m_items.contains(row.key()) || !m_rows.contains(row.key()))
                continue;
            cLeftover &found = Add(Kind::RowWithoutItem, Remedy::None,
                                   "the database has this ticket as open, and its item is not in the ticket folder: "
                                   "somebody has deleted it, or a program ended before it was there");
            found.strTicketID = row.key();
            found.strSubject = row->strSubject;
        }
    }

    void SubFolders() {
        const host::Folders oufs = oufTickets->Folders();
        for (host::MAPIFolder ouf = oufs.GetFirst(); ouf; ouf = oufs.GetNext())
            Attempt([&] { SubFolder(ouf); });
    }

    void SubFolder(const host::MAPIFolder &ouf) {
        const QString strName = ouf.Name();
        host::MAPIFolder oufReceived;
        Attempt([&] { oufReceived = ouf.Folders(receivedFolder); });
        if (oufReceived.isNothing())
            return;
        const host::Items ois = oufReceived.Items();
        const QString strPath = m_strTickets + u'\\' + strName;
        if (!m_items.contains(strName) && !m_rows.contains(strName)) {
            cLeftover &found =
                Add(Kind::NoTicket, Remedy::None,
                    QString("%1 mails with {%2} in their subjects were filed here, and there is no such ticket")
                        .arg(ois.Count())
                        .arg(strName));
            found.ouf = ouf;
            found.strFolder = strPath;
            found.strTicketID = strName;
        }
        const QString strFilter =
            QString("[%1] = %2").arg(QLatin1StringView(strFilingProperty), fncQuoted(strWorkingMark));
        for (host::Item oui = ois.Find(strFilter); oui; oui = ois.FindNext()) {
            const cWorker worker = cWorker::Of(oui);
            if (worker.state == State::Running)
                continue;
            cLeftover &found = AddItem(Kind::Reply, oui, oufReceived, strPath + u'\\' + receivedFolder,
                                       "it may not be in its ticket's work log");
            found.strTicketID = strName;
            SetWorker(found, worker);
        }
    }

    void SentMail() {
        if (!fncUsesSubFolders())
            return;
        host::MAPIFolder ouf;
        Attempt([&] { ouf = onsMAPI->GetDefaultFolder(host::defaultfolder::sentItems).Folders("ORVLSentItems"); });
        if (ouf.isNothing())
            return;
        const host::Items ois = ouf.Items();
        const QString strPath = fncGetFolderPath(ouf, onsMAPI);
        for (qint32 i = ois.Count(); i >= 1; --i) {
            Attempt([&] {
                const host::Item oui = ois.Item(i);
                const QString strTicketID = fncGetTicketIDFromSubject(oui.Subject());
                if (!strTicketID.isEmpty())
                    AddItem(Kind::SentMail, oui, ouf, strPath, "it was sent and is not yet with its ticket")
                        .strTicketID = strTicketID;
            });
        }
    }

    /// The newest ones; they stay for ever where nobody takes them away.
    void HeldBack() {
        constexpr qint32 mostTold = 50;
        host::MAPIFolder ouf;
        Attempt([&] { ouf = onsMAPI->GetDefaultFolder(host::defaultfolder::inbox).Parent().Folders("Not sent"); });
        if (ouf.isNothing())
            return;
        const host::Items ois = ouf.Items();
        const qint32 intCount = ois.Count();
        const qint32 intRest = std::max(intCount - mostTold, 0);
        const QString strPath = fncGetFolderPath(ouf, onsMAPI);
        for (qint32 i = intCount; i > intRest; --i) {
            Attempt([&] {
                const host::Item oui = ois.Item(i);
                QString strWhy = fncHint(oui, "Not sent because");
                if (strWhy.isEmpty())
                    return;
                if (strWhy.endsWith(u'.'))
                    strWhy.chop(1);
                const QString strText =
                    QString("it was not sent to %1: %2").arg(toText(oui.get("To")).left(200), strWhy);
                AddItem(Kind::NotSent, oui, ouf, strPath, strText).remedy = Remedy::None;
            });
        }
        if (intRest > 0)
            Add(Kind::NotSent, Remedy::None, QString("%1 older ones lie here too").arg(intRest)).strFolder = strPath;
    }

    struct TicketItem {
        QString strEntryID;
        QString strSubject;
    };

    QList<cLeftover> m_found;
    QSet<QString> m_mails;
    QHash<QString, TicketItem> m_items;
    TicketRows m_rows;
    QString m_strTickets;
};
} // namespace

QList<cLeftover> fncAllLeftovers() { return Search().Run(); }

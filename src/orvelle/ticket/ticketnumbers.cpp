#include "orvelle/ticket/ticketnumbers.h"

#include "orvelle/core/dialogs.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/database/connection.h"

#include <cmath>

namespace {
constexpr char strTicketTable[] = "tblTickets";

/// So far from the next lower one a number is still taken for one of this helpdesk. Of several databases lost in a row
/// there may be nothing left but the newest tickets; a folder of a ticket lies near an item, or near another folder.
constexpr qint64 farthestItem = 1000000;
constexpr qint64 farthestFolder = 100000;
/// What is above leaves too few numbers of 32 bits.
constexpr qint64 highest = 2000000000;

qint64 fncWhole(const QString &strNumber) {
    bool blnNumber = false;
    const double number = QLocale::c().toDouble(strNumber, &blnNumber);
    return blnNumber && std::isfinite(number) && number < 1e15 ? static_cast<qint64>(std::floor(number)) : 0;
}

/// The number of some item of those from one number to another; 0 where there is none.
qint64 fncFindItem(qint64 intFrom, qint64 intTo) {
    const host::Item oui =
        oufTickets->FindItem(QStringLiteral("[Ticket ID] >= %1 and [Ticket ID] <= %2").arg(intFrom).arg(intTo));
    return oui ? fncWhole(toText(oui.FindProperty("Ticket ID").value())) : 0;
}

/// The highest number of a range, one of which is known to be there.
qint64 fncHighestItem(qint64 intKnown, qint64 intTo) {
    while (intKnown < intTo) {
        const qint64 intMiddle = intKnown + (intTo - intKnown + 1) / 2;
        const qint64 intFound = fncFindItem(intMiddle, intTo);
        if (intFound == 0)
            intTo = intMiddle - 1;
        else
            intKnown = std::clamp(intFound, intMiddle, intTo);
    }
    return intKnown;
}

/// Goes from number to number as long as the next one is near enough. Where there is nothing above, that is one
/// question.
qint64 fncClimbItems(qint64 intNumber) {
    for (;;) {
        const qint64 intTo = std::min(intNumber + farthestItem, highest);
        const qint64 intFound = intNumber < intTo ? fncFindItem(intNumber + 1, intTo) : 0;
        if (intFound <= intNumber)
            return intNumber;
        intNumber = fncHighestItem(std::min(intFound, intTo), intTo);
    }
}

/// The subfolders with numbers above one.
struct cFolder {
    qint64 intNumber = 0;
    host::MAPIFolder ouf;
};
QList<cFolder> fncFoldersAbove(qint64 intNumber) {
    QList<cFolder> found;
    const host::Folders oufs = oufTickets->Folders();
    for (host::MAPIFolder ouf = oufs.Find(QStringLiteral("[Name] > %1").arg(intNumber)); ouf; ouf = oufs.FindNext())
        found.append({fncWhole(ouf.Name()), ouf});
    std::ranges::sort(found, std::ranges::greater(), &cFolder::intNumber);
    return found;
}

/// A mail whose subject has a number that is no ticket's gets a folder too, with nothing in it but such mails. A ticket
/// that was made from a mail has a copy of it, which bears the number; one that was written about has sent mail.
bool fncMadeForReplies(const host::MAPIFolder &ouf) {
    return AttemptOr(
        [&] {
            const host::Items ois = ouf.Folders("Received").Items();
            if (ois.Count() == 0 || ois.Find(QString("[BillingInformation] = '%1'").arg(ouf.Name())))
                return false;
            return Attempt([&] { static_cast<void>(ouf.Folders("Sent")); }).has_value();
        },
        false);
}

qint64 fncClimbFolders(const QList<cFolder> &folders, qint64 intNumber) {
    for (const cFolder &each : folders) {
        if (each.intNumber <= intNumber)
            break;
        if (each.intNumber <= std::min(intNumber + farthestFolder, highest) && !fncMadeForReplies(each.ouf))
            return fncClimbFolders(folders, each.intNumber);
    }
    return intNumber;
}

/// What is not counted, for the message.
QString fncLeftOut(qint64 intNumber, const QList<cFolder> &folders) {
    QStringList texts;
    constexpr qint64 anything = 1000000000000000;
    if (const qint64 intItem = AttemptOr([&] { return fncFindItem(intNumber + 1, anything); }, qint64{0}))
        texts += QString("the item with the number %1").arg(intItem);
    if (!folders.isEmpty() && folders.first().intNumber > intNumber)
        texts += QString("the subfolder %1").arg(folders.first().ouf.Name());
    if (texts.isEmpty())
        return {};
    return strLineEnd +
           QString("Not counted, for being far from all other numbers, or a folder of nothing but replies: "
                   "%1.")
               .arg(texts.join(", "));
}

void subTell(qint64 intLast, qint64 intNumber, const QList<cFolder> &folders) {
    subAssistantMessage(
        ouaOutlook,
        QString(
            "The ticket database was behind the ticket folder \"%1\": the last number that it had given was %2, but "
            "the folder knows number %3. It was lost, or replaced by an older copy. New tickets now get the "
            "numbers from %4 on, so that none is given twice.%5%6Read \"A lost or older database\" in "
            "docs/administration.md.")
            .arg(oufTickets->Name())
            .arg(intLast)
            .arg(intNumber)
            .arg(intNumber + 1)
            .arg(fncLeftOut(intNumber, folders), strLineEnd));
}
} // namespace

void subRaiseTicketNumbers() {
    subTrace("Checking that the database's ticket numbers are not behind the ticket folder's");
    if (oufTickets->isNothing())
        return;
    const auto failure = Attempt([] {
        subSetupConnection();
        if (!adoConnection.get())
            return;
        ado::Provider &database = *adoConnection->provider();
        const qint64 intLast = database.lastNumber(strTicketTable);
        const QList<cFolder> folders = fncFoldersAbove(intLast);
        qint64 intNumber = intLast;
        for (qint64 intBefore = -1; intBefore != intNumber;) {
            intBefore = intNumber;
            intNumber = fncClimbFolders(folders, fncClimbItems(intNumber));
        }
        // Of several copies that start at once, the one that raises them tells.
        if (intNumber > intLast && database.raiseLastNumber(strTicketTable, static_cast<qint32>(intNumber)))
            subTell(intLast, intNumber, folders);
    });
    if (!failure)
        return;
    subTrace("The ticket numbers could not be checked: " + failure->description());
    subAssistantMessage(ouaOutlook, "It could not be checked whether the ticket database is behind the ticket folder. "
                                    "Until it is, a number may be given twice." +
                                        (strLineEnd + failure->description()));
}

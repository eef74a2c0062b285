#include "orvelle/ticket/ticketnumbers.h"

#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/database/connection.h"
#include "orvelle/reference/settings.h"
#include "orvelle/reference/texts.h"
#include "platform/ado/recordset.h"

#include <cmath>

namespace {
constexpr char strTicketTable[] = "tblTickets";
/// What has been told of: the highest item and the highest folder that are not counted.
constexpr char strToldSetting[] = "TicketNumbersNotCounted";

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

/// What the bounds leave out; 0 for none.
struct cLeftOut {
    qint64 intItem = 0;
    qint64 intFolder = 0;

    [[nodiscard]] QString ToString() const { return QString("%1 %2").arg(intItem).arg(intFolder); }
    static cLeftOut FromString(const QString &strText) {
        const QStringList parts = strText.split(u' ');
        return {fncWhole(parts.value(0)), fncWhole(parts.value(1))};
    }
};

/// A text for the message; empty where nothing is left out.
QString fncNames(const cLeftOut &leftOut) {
    QStringList texts;
    if (leftOut.intItem > 0)
        texts += QString("the item with the number %1").arg(leftOut.intItem);
    if (leftOut.intFolder > 0)
        texts += QString("the subfolder %1").arg(leftOut.intFolder);
    return texts.join(", ");
}

/// The highest of each above a number.
cLeftOut fncLeftOut(qint64 intNumber, const QList<cFolder> &folders) {
    constexpr qint64 anything = 1000000000000000;
    cLeftOut leftOut;
    if (const qint64 intItem = AttemptOr([&] { return fncFindItem(intNumber + 1, anything); }, qint64{0}))
        leftOut.intItem = fncHighestItem(intItem, anything);
    if (!folders.isEmpty() && folders.first().intNumber > intNumber)
        leftOut.intFolder = folders.first().intNumber;
    return leftOut;
}

/// The same without what has been told of before. A folder of replies alone is nothing to tell: whoever writes a mail
/// would bring the message up.
cLeftOut fncLeftOutUntold(qint64 intNumber, const QList<cFolder> &folders) {
    const cLeftOut told =
        cLeftOut::FromString(toText(objSettings->OtherSettings->GetValue(strToldSetting, valuetype::text)));
    cLeftOut untold = fncLeftOut(std::max(intNumber, told.intItem), {});
    for (const cFolder &each : folders) {
        if (each.intNumber <= std::max(intNumber, told.intFolder))
            break;
        if (fncMadeForReplies(each.ouf))
            continue;
        untold.intFolder = each.intNumber;
        break;
    }
    return untold;
}

/// Everybody who shares the database is told once. Where it can't be kept, the next start tells again.
void subKeepTold(const cLeftOut &leftOut) {
    cOtherSettings &settings = *objSettings->OtherSettings;
    cLeftOut told = cLeftOut::FromString(toText(settings.GetValue(strToldSetting, valuetype::text)));
    told = {std::max(told.intItem, leftOut.intItem), std::max(told.intFolder, leftOut.intFolder)};
    settings.SetValue(strToldSetting, told.ToString());
    Attempt([&] {
        const auto adrRS = fncReturnRecordset("tblOtherSettings", false, false, false);
        if (!adrRS)
            return;
        if (adrRS->RecordCount() != 0)
            adrRS->Find("strPropName = " + fncQuoted(strToldSetting));
        if (adrRS->IsEOF()) {
            adrRS->AddNew();
            adrRS->Fields("strPropName").SetValue(QString(strToldSetting));
        }
        adrRS->Fields("strPropValue").SetValue(told.ToString());
        adrRS->Update();
    });
}

QString fncTextOfRaised(qint64 intLast, qint64 intNumber, const cLeftOut &leftOut) {
    const QString strNames = fncNames(leftOut);
    return QString("The ticket database was behind the ticket folder \"%1\": the last number that it had given was %2, "
                   "but the folder knows number %3. It was lost, or replaced by an older copy. New tickets now get the "
                   "numbers from %4 on, so that none is given twice.%5%6Read \"A lost or older database\" in "
                   "docs/administration.md.")
        .arg(oufTickets->Name())
        .arg(intLast)
        .arg(intNumber)
        .arg(intNumber + 1)
        .arg(strNames.isEmpty() ? QString()
                                : strLineEnd + QString("Not counted, for being far from all other numbers, or a folder "
                                                       "of nothing but replies: %1.")
                                                   .arg(strNames),
             strLineEnd);
}

QString fncTextOfLeftOut(qint64 intLast, const cLeftOut &leftOut) {
    return QString(
               "The ticket folder \"%1\" has numbers far above the last one that the ticket database has given, "
               "which is %2: %3. They are not counted, and new tickets get the numbers from %4 on.%5Where these are "
               "numbers of tickets, the database was lost or replaced by an older copy: end the programs and put a "
               "backup back before new tickets are made, or their numbers come near and are given twice. Without a "
               "backup, read \"A lost or older database\" in docs/administration.md. Where they are not, nothing "
               "is to be done, and this is not said again.")
        .arg(oufTickets->Name())
        .arg(intLast)
        .arg(fncNames(leftOut))
        .arg(intLast + 1)
        .arg(strLineEnd);
}

QString fncRaise() {
    subSetupConnection();
    if (!adoConnection.get())
        return {};
    ado::Provider &database = *adoConnection->provider();
    const qint64 intLast = database.lastNumber(strTicketTable);
    const QList<cFolder> folders = fncFoldersAbove(intLast);
    qint64 intNumber = intLast;
    for (qint64 intBefore = -1; intBefore != intNumber;) {
        intBefore = intNumber;
        intNumber = fncClimbFolders(folders, fncClimbItems(intNumber));
    }
    // Of several copies that start at once, the one that raises them tells.
    const bool blnRaised =
        intNumber > intLast && database.raiseLastNumber(strTicketTable, static_cast<qint32>(intNumber));
    const cLeftOut leftOut = blnRaised ? fncLeftOut(intNumber, folders) : fncLeftOutUntold(intNumber, folders);
    if (!fncNames(leftOut).isEmpty())
        subKeepTold(leftOut);
    if (blnRaised)
        return fncTextOfRaised(intLast, intNumber, leftOut);
    return fncNames(leftOut).isEmpty() ? QString() : fncTextOfLeftOut(intNumber, leftOut);
}
} // namespace

QString fncRaiseTicketNumbers() {
    subTrace("Checking that the database's ticket numbers are not behind the ticket folder's");
    QString strTold;
    if (oufTickets->isNothing())
        return strTold;
    const auto failure = Attempt([&] { strTold = fncRaise(); });
    if (failure)
        strTold = "It could not be checked whether the ticket database is behind the ticket folder. Until it is, a "
                  "number may be given twice." +
                  (strLineEnd + failure->description());
    if (!strTold.isEmpty())
        subTrace(strTold);
    return strTold;
}

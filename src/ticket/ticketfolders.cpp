#include "ticket/ticketfolders.h"

#include "core/dialogs.h"
#include "core/phrases.h"
#include "core/process.h"
#include "core/trace.h"

namespace {
/// The kind of folder that takes mails and posts.
constexpr qint32 mailFolder = 6;

void subTellNoSubFolder() { subAssistantMessage(ouaOutlook, LNGFAILEDTOCREATESUBFOLDER + strLineEnd + LNGCHECKPERM); }
} // namespace

QString fncGetTicketIDFromSubject(const QString &strSubject) {
    const qsizetype intOpen = strSubject.indexOf(QChar(u'{'));
    if (intOpen < 0)
        return {};
    const qsizetype intClose = strSubject.indexOf(QChar(u'}'), intOpen);
    if (intClose < 0)
        return {};
    return strSubject.mid(intOpen + 1, intClose - intOpen - 1);
}

host::MAPIFolder fncGetTicketFolder(const QString &strTicketID) {
    host::MAPIFolder ouf;
    Attempt([&] { ouf = oufTickets->Folders(strTicketID); });
    // The host may take a number for a position: then it is some other folder.
    if (ouf.isNothing() || AttemptOr([&] { return ouf.Name(); }, QString()) != strTicketID) {
        ouf = host::MAPIFolder();
        Attempt([&] { ouf = oufTickets->Folders().Add(strTicketID, mailFolder); });
    }
    if (ouf.isNothing())
        subTellNoSubFolder();
    return ouf;
}

host::MAPIFolder fncGetTicketSubFolder(const QString &strTicketID, const QString &strName) {
    const host::MAPIFolder oufTicket = fncGetTicketFolder(strTicketID);
    if (oufTicket.isNothing())
        return {};
    subTrace("Trying to acquire/create outlook sub folder with caption  = " + strTicketID);
    host::MAPIFolder ouf;
    Attempt([&] { ouf = oufTicket.Folders(strName); });
    if (ouf.isNothing())
        Attempt([&] { ouf = oufTicket.Folders().Add(strName, mailFolder); });
    if (ouf.isNothing())
        subTellNoSubFolder();
    return ouf;
}

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

namespace {
/// The host may take a number for a position: then it gives some other folder, and there is none of the name.
host::MAPIFolder fncFind(const host::MAPIFolder &oufParent, const QString &strName) {
    return AttemptOr(
        [&] {
            const host::MAPIFolder ouf = oufParent.Folders(strName);
            return ouf && ouf.Name() == strName ? ouf : host::MAPIFolder();
        },
        host::MAPIFolder());
}

/// Where the name is taken in between, another copy has made the very folder: then it is that one.
host::MAPIFolder fncAddOrFind(const host::MAPIFolder &oufParent, const QString &strName) {
    host::MAPIFolder ouf;
    if (Attempt([&] { ouf = oufParent.Folders().Add(strName, mailFolder); }))
        ouf = fncFind(oufParent, strName);
    return ouf;
}
} // namespace

host::MAPIFolder fncGetTicketFolder(const QString &strTicketID) {
    host::MAPIFolder ouf = fncFind(oufTickets, strTicketID);
    if (ouf.isNothing())
        ouf = fncAddOrFind(oufTickets, strTicketID);
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
        ouf = fncAddOrFind(oufTicket, strName);
    if (ouf.isNothing())
        subTellNoSubFolder();
    return ouf;
}

#include "orvelle/ticket/ticketfolders.h"

#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/dialogs/dialogs.h"
#include "orvelle/host/constants.h"
#include "orvelle/reference/texts.h"

namespace {
/// The kind of folder that takes mails and posts.

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
/// Neither a control character nor one that is not seen but changes how others are.
bool fncIsPlain(QChar chr) {
    switch (chr.category()) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_NotAssigned:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return false;
    default:
        return true;
    }
}

bool fncIsPair(const QString &strText, qsizetype i) {
    const qsizetype intHigh = strText[i].isHighSurrogate() ? i : i - 1;
    return intHigh >= 0 && intHigh + 1 < strText.size() && strText[intHigh].isHighSurrogate() &&
           strText[intHigh + 1].isLowSurrogate();
}

/// The host may take a number for a position: then it gives some other folder, and there is none of the name.
host::MAPIFolder fncFind(const host::MAPIFolder &oufParent, const QString &strName) {
    return AttemptOr([&] { return oufParent.FolderNamed(strName); }, host::MAPIFolder());
}

/// Where the name is taken in between, another copy has made the very folder: then it is that one.
host::MAPIFolder fncAddOrFind(const host::MAPIFolder &oufParent, const QString &strName) {
    host::MAPIFolder ouf;
    if (Attempt([&] { ouf = oufParent.AddFolder(strName, host::defaultfolder::inbox); }))
        ouf = fncFind(oufParent, strName);
    return ouf;
}
} // namespace

QString fncTicketFolderName(const QString &strTicketID) {
    constexpr qsizetype longestName = 64;
    QString strName = fncCut(strTicketID, longestName);
    const QString strShown = strName.trimmed();
    const qsizetype intFirst = strShown.isEmpty() ? strName.size() : strName.indexOf(strShown);
    for (qsizetype i = 0; i < strName.size(); ++i) {
        const QChar chr = strName[i];
        const bool blnEdge = i < intFirst || i >= intFirst + strShown.size();
        const bool blnHalf = chr.isSurrogate() && !fncIsPair(strName, i);
        if (blnEdge || blnHalf || !fncIsPlain(chr) || chr == u'\\' || chr == u'/')
            strName[i] = u'_';
    }
    return strName;
}

host::MAPIFolder fncGetTicketFolder(const QString &strTicketID) {
    const QString strName = fncTicketFolderName(strTicketID);
    host::MAPIFolder ouf = fncFind(oufTickets, strName);
    if (ouf.isNothing())
        ouf = fncAddOrFind(oufTickets, strName);
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

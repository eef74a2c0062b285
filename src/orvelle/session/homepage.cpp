#include "orvelle/session/homepage.h"

#include "orvelle/core/components.h"
#include "orvelle/core/errorhandler.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/textfiles.h"
#include "orvelle/host/constants.h"
#include "orvelle/host/snapshot.h"
#include "orvelle/session/folderpath.h"
#include "platform/scripting/shell.h"
#include "platform/window/window.h"

namespace {

QString fncPageOf(const host::MAPIFolder &ouf) {
    return AttemptOr([&] { return ouf.WebViewURL(); }, QString());
}

bool fncIsHomePage(const QString &strURL) { return strURL.endsWith(strHomePageFile, Qt::CaseInsensitive); }

bool fncMayHoldTickets(const host::MAPIFolder &ouf) {
    const qint32 intType = AttemptOr([&] { return ouf.DefaultItemType(); }, -1);
    return intType == host::itemtype::mail || intType == host::itemtype::post;
}

QString fncRefusal(const QString &strHomePageLine) {
    return QString("The folder you have selected is not a Orvelle outlook/public folder!") + strLineEnd +
           strHomePageLine + strHomePageFile + "'." + strLineEnd + strLineEnd + "Press OK to continue.";
}

bool fncGivesUp() {
    // Where nobody can be asked, no is asked again for ever, so yes is the cautious answer.
    return window::msgBox("Are you sure you want to exit?", window::Buttons::YesNo, window::Icon::Question,
                          strProgramTitle, window::Yes) == window::Yes;
}
} // namespace

QString fncHomePageFolder(const QString &strWebViewURL) {
    constexpr qsizetype schemeLength = 5; // "file:"
    qsizetype intLast = strWebViewURL.lastIndexOf(QChar(u'\\'));
    if (intLast < 0)
        intLast = strWebViewURL.lastIndexOf(QChar(u'/'));
    return fncNoTrailingSlash(strWebViewURL.left(intLast + 1).mid(schemeLength));
}

host::MAPIFolder fncValidTicketFolder() {
    host::MAPIFolder ouf = AttemptOr([] { return ouaOutlook->ActiveExplorer().CurrentFolder(); }, host::MAPIFolder());
    if (fncIsHomePage(fncPageOf(ouf)))
        return ouf;
    for (;;) {
        ouf = fncPickFolder(nullptr);
        if (ouf.isNothing()) {
            if (fncGivesUp())
                throw ProcessEnd();
            continue;
        }
        QString strMessage = fncRefusal("A valid Orvelle public folder have has homepage path set to '");
        if (fncMayHoldTickets(ouf)) {
            if (fncIsHomePage(fncPageOf(ouf)))
                return ouf;
            strMessage = fncRefusal("A valid Orvelle public folder has its homepage path set to '");
        }
        window::msgBox(strMessage, window::Buttons::OK, window::Icon::None, strProgramTitle);
    }
}

void subWriteReg() try {
    const QString strKey = "HKCU\\Software\\Tessmark\\Orvelle\\";
    const auto shell = fncGetShell();
    const auto write = [&](const QString &strName, const QString &strText) {
        shell->RegWrite(strKey + strName, strText, "REG_SZ");
    };
    const host::MAPIFolder seen = host::snapshot(oufTickets.get(), {"EntryID", "StoreID", "Name"});
    write("Folder EntryID", seen.EntryID());
    write("Folder StoreID", seen.StoreID());
    write("Folder Path", fncGetFolderPath(oufTickets, onsMAPI));
    write("Folder Name", seen.Name());
    write("Minutes", LNGMINUTES);
} catch (const Failure &failure) {
    subErrorHandler(failure, "subWriteReg");
}

#include "orvelle/program/main.h"

#include "orvelle/core/components.h"
#include "orvelle/core/errorhandler.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/starting.h"
#include "orvelle/core/steps.h"
#include "orvelle/core/textfiles.h"
#include "orvelle/core/trace.h"
#include "orvelle/database/chooseconnection.h"
#include "orvelle/database/upgrade.h"
#include "orvelle/dialogs/dialogs.h"
#include "orvelle/mail/foldermonitor.h"
#include "orvelle/mail/intake.h"
#include "orvelle/program/dummy.h"
#include "orvelle/reference/settings.h"
#include "orvelle/session/clienttools.h"
#include "orvelle/session/homepage.h"
#include "orvelle/session/properties.h"
#include "orvelle/session/safeutils.h"
#include "orvelle/session/session.h"
#include "orvelle/ticket/ticketnumbers.h"
#include "orvelle/ticketfolder/getsettings.h"
#include "orvelle/ticketfolder/ticketfolder.h"
#include "orvelle/toolbar/rootexplorer.h"

#include <QScopeGuard>

ProcessLocal<bool> blnPreviousInstance;

namespace {
/// The first run goes on only with the safe-object library and a folder for the tickets.
bool fncDecideInstall() {
    if (!fncIsFirstRun())
        return false;
    if (!fncSetupSafeUtils() || oufTickets->isNothing())
        subQuit();
    return true;
}

void subTell(const QString &strText) {
    if (!strText.isEmpty())
        subAssistantMessage(ouaOutlook, strText);
}

void subStartMonitor(bool blnInstall) {
    subTrace("Setting a reference to the active Outlook Explorer window");
    // It is told when mail is taken in already, for the message may wait for somebody all night. No other start tells
    // it, so a run that ends before tells it on standard error.
    QString strNumbers;
    auto untold = qScopeGuard([&] {
        if (fncEndAsked())
            subTell(strNumbers);
    });
    if (blnInstall) {
        // The first access to the database: it is what opens the dialogs that choose one.
        objSettings->SaveSettings();
    } else {
        subGetSettings();
        strNumbers = fncRaiseTicketNumbers();
        subSetupOutlookMonitor(ouaOutlook->ActiveExplorer());
        subSetCurrentFolder(host::defaultfolder::calendar);
    }
    LoadLanguages(objSettings->CurrentSelectedLanguage);
    if (objSettings->EmailFolders->DicList->Count() > 0)
        subMonitorMailFolders();
    untold.dismiss();
    subTell(strNumbers);
}

void subFindFolderOfTicketRun() {
    subReadFolderFromRegistry();
    oufTickets = fncSavedFolder();
    objSettings->CurrentResponsible->FullName = fncGetUserName();
}

void subShowNewHelpdesk() {
    if (oufTickets->isNothing() || ouaOutlook->isNothing() || ouaOutlook->Explorers().Count() == 0)
        return;
    ouaOutlook->ActiveExplorer().CurrentFolder(oufTickets);
    if (frmChooseConnection->blnLoadExampleData)
        subExecute("ORVELLEEXAMPLEDATA", "", "");
    frmChooseConnection = ChooseConnectionForm();
    subRefreshCBHomepage();
}
} // namespace

void Main(const QString &strCommand) try {
    const bool blnTicketRun = strCommand == strTicketCommand;
    subFillLanguageNames();
    subFillLanguageColumns();
    subLoadStartLanguage(strCommand);
    subInitCommonControls();
    subSetupFS();
    subRemoveOldReportFiles();
    if (!blnTicketRun) {
        subSetCurrentFolder(host::defaultfolder::calendar);
        if (!oufTickets->isNothing())
            oufTickets = fncValidTicketFolder();
    }
    subStartOutlook(host::defaultfolder::inbox);
    subCheckClientTools();
    subFindDatabaseFile();
    const bool blnInstall = fncDecideInstall();
    frmChooseConnection->blnHideExampleDataOption = false;
    blnAllowDBCreation = true;
    subCreateSettings();
    if (!blnTicketRun && !blnPreviousInstance)
        subStartMonitor(blnInstall);
    if (blnTicketRun)
        subFindFolderOfTicketRun();
    if (blnInstall) {
        subShowNewHelpdesk();
        return;
    }
    if (blnTicketRun) {
        subGetSettings();
        LoadLanguages(objSettings->CurrentSelectedLanguage);
        subTell(fncRaiseTicketNumbers());
        subCreateTicketFromSelected();
    }
    subRepairOneOffForms();
} catch (const Failure &failure) {
    subErrorHandler(failure, "Main");
}

void subSetupOutlookMonitor(const host::Explorer &oue) {
    subMakeRootExplorer();
    objRootExplorer->Attach(ouaOutlook, oue);
    objRootExplorer->subAddButtons();
    if (fncUsesSubFolders())
        objRootExplorer->subSetupSentORVL();
    fncDummyForm()->Load();
}

bool fncIsFirstRun() {
    subTrace("Checking if DB files exist");
    strDBPath = fncNoTrailingSlash(fncProgramFolder()) + "\\";
    subSetupFS();
    return !fsoFileSystem->FileExists(fncDatabaseFile(strDBPath)) &&
           !fsoFileSystem->FileExists(strDBPath.get() + "DBConnection.txt");
}

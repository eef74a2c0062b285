#include "core/main/main.h"

#include "core/dialogs.h"
#include "core/main/dummy.h"
#include "core/runtime.h"
#include "database/chooseconnection.h"
#include "database/upgrade.h"
#include "mail/foldermonitor.h"
#include "mail/intake.h"
#include "outlook/clienttools.h"
#include "outlook/explorer/rootexplorer.h"
#include "outlook/homepage.h"
#include "outlook/outlookfolder.h"
#include "outlook/properties.h"
#include "outlook/safeutils.h"
#include "outlook/session.h"
#include "reference/settings.h"
#include "reference/ticketfolder.h"
#include "ticket/ticketnumbers.h"

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

void subStartMonitor(bool blnInstall) {
    subTrace("Setting a reference to the active Outlook Explorer window");
    if (blnInstall) {
        // The first access to the database: it is what opens the dialogs that choose one.
        objSettings->SaveSettings();
    } else {
        objSettings->GetSettings(false);
        subRaiseTicketNumbers();
        subSetupOutlookMonitor(ouaOutlook->ActiveExplorer());
        subSetCurrentFolder(defaultfolder::calendar);
    }
    LoadLanguages(objSettings->CurrentSelectedLanguage);
    if (objSettings->EmailFolders->DicList->Count() > 0)
        subMonitorMailFolders();
}

void subFindFolderOfTicketRun() {
    subReadFolderFromRegistry();
    oufTickets = objSettings->objFolder->GetFolder();
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
        subSetCurrentFolder(defaultfolder::calendar);
        if (!oufTickets->isNothing())
            oufTickets = fncValidTicketFolder();
    }
    subStartOutlook(defaultfolder::inbox);
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
        objSettings->GetSettings(false);
        LoadLanguages(objSettings->CurrentSelectedLanguage);
        subRaiseTicketNumbers();
        subCreateTicketFromSelected();
    }
    subRepairOneOffForms();
} catch (const Failure &failure) {
    subErrorHandler(failure, "Main");
}

void subSetupOutlookMonitor(const host::Explorer &oue) {
    objRootExplorer = Ref<cRootExplorer>::make();
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

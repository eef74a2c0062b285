#include "orvelle/ticketfolder/getsettings.h"

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/dialogs/dialogs.h"
#include "orvelle/reference/settings.h"
#include "orvelle/session/homepage.h"
#include "orvelle/session/session.h"
#include "orvelle/ticketfolder/ticketfolder.h"

namespace {
constexpr qint32 sqlServer = 3;

[[noreturn]] void subNoConnection() {
    QString text = LNGERRCONNECTIONFAILED + strLineEnd + objSettings->ReportToValue + strLineEnd;
    if (objSettings->ReportTo == sqlServer)
        text += "To re-install, please remove the DBConnection.txt file.";
    if (ouaOutlook->isNothing())
        subStartOutlook(host::defaultfolder::inbox);
    subAssistantMessage(ouaOutlook, text);
    // Off the ticket folder, so that the next run is not started by the folder at once.
    ouaOutlook->ActiveExplorer().CurrentFolder(onsMAPI->GetDefaultFolder(host::defaultfolder::inbox));
    subQuit();
}
} // namespace

void subGetSettings() try {
    if (!objSettings->ReadSettings())
        subNoConnection();
    objSettings->SetCurrentResponsible(fncGetUserName());
    strCurrentUserName = objSettings->CurrentResponsible->FullName;
    subCloseConnection();
    if (oufTickets->isNothing())
        subFindTicketFolder();
    subWriteReg();
} catch (const Failure &failure) {
    subErrorHandler(failure, "cSettings.GetSettings");
}

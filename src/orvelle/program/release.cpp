// Letting go of everything at the end of a run.

#include "orvelle/core/process.h"
#include "orvelle/database/chooseconnection.h"
#include "orvelle/mail/foldermonitor.h"
#include "orvelle/program/dummy.h"
#include "orvelle/program/main.h"
#include "orvelle/reference/settings.h"
#include "orvelle/session/forms.h"
#include "orvelle/session/session.h"
#include "orvelle/toolbar/rootexplorer.h"

void subReleaseObjects() {
    if (const auto explorer = objRootExplorer.get())
        explorer->subFileSentMail();
    subUnloadForms();
    frmChooseConnection = ChooseConnectionForm();
    frmDummy = Ref<DummyForm>();
    Attempt([] { subCloseConnection(); });
    oufTickets = host::MAPIFolder();
    ouaOutlook = host::Application();
    reportTarget = Ref<ReportTarget>();
    objSettings = Ref<cSettings>();
    objRootExplorer = Ref<cRootExplorer>();
    // Takes the flag items out of the watched folders, so that the next client can have them.
    colIncomingMonitors = Ref<scripting::Dictionary<Ref<cIncomingMonitor>>>();
    subReleaseOutlook();
}

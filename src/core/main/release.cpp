// Letting go of everything at the end of a run.

#include "core/main/dummy.h"
#include "core/main/main.h"
#include "core/process.h"
#include "database/chooseconnection.h"
#include "mail/foldermonitor.h"
#include "outlook/explorer/rootexplorer.h"
#include "outlook/forms.h"
#include "outlook/session.h"
#include "reference/settings.h"

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

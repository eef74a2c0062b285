#include "orvelle/session/clienttools.h"

#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/starting.h"
#include "orvelle/core/trace.h"
#include "orvelle/dialogs/dialogs.h"
#include "orvelle/session/homepage.h"
#include "platform/scripting/components.h"

namespace {
/// The first version whose library offers all that is called on it.
constexpr qint32 oldestFileVersion = 92200;
} // namespace

void subCheckClientTools() {
    subTrace("Detecting the presence of ORVL client tool addin");
    host::Handle addin;
    Attempt([&] { addin = host::Handle(scripting::CreateObject("OrvelleClientTools.cButtonHolder")); });
    const qint32 lngVersion = AttemptOr([&] { return toInt32(addin.get("FileVersion")); }, 0);
    if (lngVersion < oldestFileVersion)
        Attempt([] { subOfferClientTools(); });
}

void subOfferClientTools() {
    const QString strQuestion = LNGHDCLIENTTOOLS + strLineEnd + LNGINSTALLNOW;
    if (fncAssistantYesNo(ouaOutlook, strQuestion, 4) != window::Yes)
        return;
    subAssistantMessage(ouaOutlook, LNGRESTARTOUTLOOK);
    subInvokeShellVerb(fncHomePageFolder(oufTickets->WebViewURL()), "OrvelleClientTools.exe", "");
    subQuit();
}

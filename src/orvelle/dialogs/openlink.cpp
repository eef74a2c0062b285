#include "orvelle/dialogs/openlink.h"

#include "orvelle/core/components.h"
#include "orvelle/core/process.h"
#include "orvelle/dialogs/dialogs.h"

void subOpenLink(const QString &strURL) {
    if (Attempt([&] { fncGetShell()->Run(strURL); }))
        subAssistantMessage(ouaOutlook, "Failed to start web browser!");
}

#include "orvelle/dialogs/savetrouble.h"

#include "orvelle/core/process.h"
#include "orvelle/dialogs/dialogs.h"

#include <map>

namespace {
ProcessLocal<int> intTellOnce;

/// The reason that was told last, by what could not be saved.
ProcessLocal<std::map<Saving, QString>> mapTold;

/// What stops every item and not only the one at hand.
bool fncStopsAll(const Failure &failure) {
    return failure.number() == failures::noDiskSpace || failure.number() == failures::accessDenied ||
           failure.number() == failures::unspecified;
}
} // namespace

TellOnce::TellOnce() { intTellOnce = intTellOnce.get() + 1; }

TellOnce::~TellOnce() { intTellOnce = intTellOnce.get() - 1; }

void subTellSaveTrouble(Saving saving, const QString &strMessage, const Failure &failure) {
    const bool blnKnown = intTellOnce > 0 && fncStopsAll(failure) && mapTold.get()[saving] == failure.description();
    if (blnKnown)
        return;
    // Before it is shown: while the message stands, the next mail may come in.
    mapTold.get()[saving] = failure.description();
    const QString &strReason = failure.description();
    subAssistantMessage(ouaOutlook, strMessage.isEmpty() ? strReason : strMessage + strLineEnd + strReason);
}

void subSaveWorked(Saving saving) { mapTold.get().erase(saving); }

// The bar of the helpdesk in the Explorer and its buttons.

#include "orvelle/core/entry.h"
#include "orvelle/core/errorhandler.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/toolbar/rootexplorer.h"

namespace {
constexpr qint32 faceSettings = 488;
constexpr qint32 faceCopy = 19;

host::CommandBars fncBarsOf(const host::Explorer &oue) {
    return AttemptOr([&] { return oue.CommandBars(); }, host::CommandBars());
}
} // namespace

host::CommandBarButton cRootExplorer::AddButton(const QString &strCaption, const QString &strTooltip,
                                                qint32 intFaceId) {
    constexpr qint32 typeButton = 1;
    constexpr qint32 iconOnly = 1;
    constexpr qint32 buttonWidth = 25;
    const host::CommandBarButton button = cbrToolbar.Controls().Add(typeButton, 1, true);
    button.Width(buttonWidth);
    button.Style(iconOnly);
    button.Caption(strCaption);
    button.TooltipText(strTooltip);
    button.FaceId(intFaceId);
    return button;
}

void cRootExplorer::subAddButtons() try {
    constexpr qint32 positionRight = 2;
    // A bar that is made and not kept here would stay when the run ends.
    const WholeStep whole;
    subTrace("Adding control buttons to current explorer");
    const host::CommandBars bars = fncBarsOf(oueCurrExplorer);
    if (bars.isNothing())
        return;
    cbrToolbar = bars.Add(strProgramTitle, positionRight, false, true);
    cbrToolbar.Visible(true);

    cmdSettings = AddButton(LNGSETTINGS, LNGSETTINGSTT, faceSettings);
    m_buttonEvents.push_back(
        cmdSettings.connect("Click", EntryBetween(Own(&cRootExplorer::cmdSettings_Click), Turn::First)));
    cmdCopy = AddButton(LNGCOPY, LNGCOPY, faceCopy);
    cmdCopy.BeginGroup(true);
    m_buttonEvents.push_back(cmdCopy.connect("Click", EntryBetween(Own(&cRootExplorer::cmdCopy_Click), Turn::First)));
} catch (const Failure &failure) {
    subErrorHandler(failure, "subAddButtons");
}

void cRootExplorer::subRemoveButtons() {
    if (cmdSettings)
        Attempt([&] { cmdSettings.Delete(); });
    if (cbrToolbar)
        Attempt([&] { cbrToolbar.Delete(); });
    const host::CommandBars bars = fncBarsOf(oueCurrExplorer);
    if (bars.isNothing())
        return;
    for (qint32 i = AttemptOr([&] { return bars.Count(); }, 0); i >= 1; --i) {
        Attempt([&] {
            const host::CommandBar bar = bars.Item(i);
            if (bar.Name() == strProgramTitle)
                bar.Delete();
        });
    }
}

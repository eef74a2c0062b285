#include "orvelle/dialogs/formhelpers.h"

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/trace.h"
#include "platform/window/window.h"

void subEnsureVisibleTaskBar(controls::Form &frm, const QString &strTitle) try {
    subTrace("Trying to make sure the form appears in the Activity bar");
    frm.SetInTaskBar(true);
    Attempt([&] {
        if (!strTitle.isEmpty())
            window::activate(strTitle);
    });
    Attempt([&] {
        if (!frm.Visible())
            return;
        window::activate(frm.Caption());
        frm.SetFocus();
    });
} catch (const Failure &failure) {
    subErrorHandler(failure, "modAPI.subEnsureVisibleTaskBar");
}

/// The askers of the process itself.
#pragma once

#include "platform/window/window.h"

namespace window {

/// Gives the cautious answer and writes question and answer to standard error.
std::unique_ptr<Asker> makeUnattendedAsker();

/// Asks the person at the display. The widgets bear the names of the buttons ("cmdYes", "cmdOK", ...) and of the
/// sheet's controls, a message box is "messageBox". A box that is closed by the end of the process gives the cautious
/// answer. REQUIRES: a `QApplication` when it asks.
std::unique_ptr<Asker> makeWidgetAsker();

} // namespace window

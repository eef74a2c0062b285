/// A tree to choose one row of.
#pragma once

#include "platform/window/window.h"

class QWidget;

namespace window {

/// Shows the field's rows with the one of its value selected and in sight, and keeps the value up to date. Arrows and
/// the first letters of a row move the selection. REQUIRES: the field outlives the widget.
QWidget *makeTree(Field &field);

} // namespace window

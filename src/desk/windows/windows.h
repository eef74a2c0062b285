/// The windows and dialogs of the desk. They see the session through its objects and models, and are made by a factory
/// that the session knows by its interface alone.
#pragma once

#include "desk/objects/windowfactory.h"

#include <memory>

namespace desk {

std::unique_ptr<WindowFactory> makeWindowFactory();

} // namespace desk

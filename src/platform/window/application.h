/// The application object of a program that may have somebody to ask.
#pragma once

#include <QCoreApplication>

#include <memory>

namespace window {

/// With windows where a display is named and questions may be asked, without otherwise. A display that can't be reached
/// is as none. The program does not end with its last window. REQUIRES: `argc` and `argv` outlive the application.
std::unique_ptr<QCoreApplication> makeApplication(int &argc, char **argv);

} // namespace window

#include "platform/window/application.h"

#include <QApplication>
#include <QScopeGuard>

namespace window {

namespace {

const char *const platformVariable = "QT_QPA_PLATFORM";

bool hasDisplay() {
    const QByteArray platform = qgetenv(platformVariable);
    if (platform == "offscreen" || platform == "minimal" || qgetenv("ORVELLE_UNATTENDED") == "1")
        return false;
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

} // namespace

std::unique_ptr<QCoreApplication> makeApplication(int &argc, char **argv) {
    if (!hasDisplay())
        return std::make_unique<QCoreApplication>(argc, argv);
    // The last of the list is taken where no display answers; on its own, a missing display would end the process.
    const QByteArray standing = qgetenv(platformVariable);
    const QByteArray usual = qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ? "xcb" : "wayland;xcb";
    qputenv(platformVariable, (standing.isEmpty() ? usual : standing) + ";offscreen");
    const auto back = qScopeGuard([&] {
        if (standing.isEmpty())
            qunsetenv(platformVariable);
        else
            qputenv(platformVariable, standing);
    });
    auto application = std::make_unique<QApplication>(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return application;
}

} // namespace window

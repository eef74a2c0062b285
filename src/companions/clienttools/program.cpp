// OrvelleClientTools.exe: installs the client tools for the user, or removes them with --remove.

#include "platform/safeobjects/safeobjects.h"
#include "platform/scripting/components.h"

#include <QCoreApplication>

#include <cstdio>

namespace {
int usage() {
    std::fputs("usage: OrvelleClientTools.exe [--remove]\n", stderr);
    return 2;
}
} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    const bool isRemoval = arguments == QStringList{"--remove"};
    if (!isRemoval && !arguments.isEmpty())
        return usage();
    try {
        for (const QString &progId : safeobjects::progIds())
            scripting::Components::setInstalled(progId, !isRemoval);
    } catch (const Failure &failure) {
        std::fprintf(stderr, "The client tools could not be %s: %s\n", isRemoval ? "removed" : "installed",
                     qUtf8Printable(failure.description()));
        return 1;
    }
    std::puts(isRemoval ? "The client tools are removed." : "The client tools are installed.");
    return 0;
}

#include "companions/settings/commandline.h"
#include "platform/ado/jet/engine.h"

#include <QCoreApplication>

#include <csignal>

int main(int argc, char **argv) {
    // A limit on the size of files then fails the write, as a full disk does, and the program says so.
    std::signal(SIGXFSZ, SIG_IGN);
    const QCoreApplication application(argc, argv);
    ado::addJetEngine();
    return settings::run(QCoreApplication::arguments().mid(1));
}

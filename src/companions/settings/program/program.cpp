#include "companions/settings/commandline.h"
#include "platform/ado/jet/engine.h"

#include <QCoreApplication>

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    ado::addJetEngine();
    return settings::run(QCoreApplication::arguments().mid(1));
}

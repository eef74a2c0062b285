#include "companions/settings/commandline.h"

#include <QCoreApplication>

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    return settings::run(QCoreApplication::arguments().mid(1));
}

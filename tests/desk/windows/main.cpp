// Windows need their own kind of application. With "--ask SOCKET" it is a program that asks a desk for a folder and
// prints its name.

#include "automation/remote.h"
#include "platform/value/convert.h"

#include <gtest/gtest.h>

#include <QApplication>

#include <cstdio>

namespace {

int ask(const QString &socket) {
    const auto client = automation::Client::connect(socket);
    const auto session = client->root()->call("GetNamespace", {"MAPI"}).object();
    const Value picked = session->call("PickFolder", {});
    std::puts(picked.isNothing() ? "nothing" : toText(picked.object()->get("Name")).toUtf8().constData());
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    if (argc == 3 && qstrcmp(argv[1], "--ask") == 0) {
        const QCoreApplication application(argc, argv);
        return ask(QString::fromLocal8Bit(argv[2]));
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}

// The other process of the tests: a host, or a client that plays a part. It ends when its standard input does, so that
// none is left over.

#include "automation/sample.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QSocketNotifier>
#include <QTimer>

#include <cstdio>
#include <map>
#include <unistd.h>

using namespace automation;

namespace {

void say(const char *text) {
    std::puts(text);
    std::fflush(stdout);
}

int runHost(const QString &socket) {
    const ObjectPtr root = wrap(std::make_shared<sample::Sample>());
    try {
        const Server server([root] { return root; }, socket);
        say("ready");
        return QCoreApplication::exec();
    } catch (const Failure &failure) {
        say(QByteArray::number(failure.number()).constData());
        return 3;
    }
}

/// Everything at once for as long as it lives: calls, objects made and dropped, events that call back.
int hammer(Object &root, int) {
    SubscriptionPtr write = root.connect("Write", [&root](ValueList &arguments) {
        root.get("Name");
        arguments[0] = true;
    });
    for (int i = 0;; ++i) {
        const ObjectPtr child = root.call("NewChild", {QString::number(i)}).object();
        child->get("Name");
        root.call("Save", {});
        root.call("Echo", {QString(1000 * (i % 50), u'x')});
        if (i == 3)
            say("running");
    }
}

/// Cancels every Write, having asked the host for something. May take a while over it, in an event loop of its own as a
/// question to a person would.
int cancel(Object &root, int milliseconds) {
    const SubscriptionPtr write = root.connect("Write", [&root, milliseconds](ValueList &arguments) {
        root.get("Name");
        QEventLoop loop;
        QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
        if (milliseconds > 0)
            loop.exec();
        arguments[0] = true;
    });
    say("running");
    return QCoreApplication::exec();
}

/// Goes down as deep as the host says, one level in each handler, then keeps listening.
int deepen(Object &root, int level) {
    const SubscriptionPtr deeper = root.connect("Deeper", [&root](ValueList &arguments) {
        root.call("Deepen", {Value(std::get<qint32>(arguments[0].held()) - 1)});
    });
    say("running");
    for (int round = 0; round < 20; ++round)
        root.call("Deepen", {level});
    say("done");
    return QCoreApplication::exec();
}

/// Never stops asking.
int work(Object &root, int) {
    say("running");
    for (;;)
        root.call("Deepen", {1});
}

int runClient(const QString &socket, const QStringList &arguments) {
    const auto client = Client::connect(socket, [] { QCoreApplication::exit(0); });
    const std::map<QString, int (*)(Object &, int)> parts{
        {"hammer", hammer}, {"cancel", cancel}, {"deepen", deepen}, {"work", work}};
    return parts.at(arguments.value(0))(*client->root(), arguments.value(1).toInt());
}

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    const QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [] {
        char byte = 0;
        if (::read(STDIN_FILENO, &byte, 1) <= 0)
            QCoreApplication::exit(0);
    });
    const QStringList arguments = QCoreApplication::arguments();
    try {
        return arguments.value(1) == QLatin1String("host") ? runHost(arguments.value(2))
                                                           : runClient(arguments.value(2), arguments.mid(3));
    } catch (const Failure &failure) {
        // The host went away in the middle of a call: that is how these parts end.
        return failure.number() == failures::peerGone ? 0 : 1;
    }
}

// orvelle: the program as a process, against the desk of a profile.

#include "automation/remote.h"
#include "orvelle/core/steps.h"
#include "orvelle/program/programrun.h"
#include "platform/ado/jet/engine.h"
#include "platform/value/processlocal.h"
#include "platform/window/application.h"

#include <QSocketNotifier>
#include <QStandardPaths>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// The profile folder, as the desk takes it.
QString profileFolder() {
    const QString named = qEnvironmentVariable("ORVELLE_PROFILE");
    return named.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/orvelle/profile"
                           : named;
}

int endPipe[2] = {-1, -1};
volatile std::sig_atomic_t endSignalled = 0;

void onEndSignal(int) {
    endSignalled = 1;
    const char byte = 0;
    // A full pipe already holds what the event loop has to know.
    [[maybe_unused]] const auto written = ::write(endPipe[1], &byte, 1);
}

/// Turns the signals that ask a process to end into a file that the event loop can watch. Programs that this one starts
/// get the signals as usual.
int openEndSignals() {
    if (::pipe2(endPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return -1;
    struct sigaction action = {};
    action.sa_handler = &onEndSignal;
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
    return endPipe[0];
}

/// The kinds of databases that the program can open.
void addEngines(ProgramCopy &copy) {
    const ProgramCopy::Scope scope(copy);
    ado::addJetEngine();
}

int runProgram(const QString &command) {
    const QString profile = profileFolder();
    // Those whose host has gone stay, since their handles may still be held.
    std::vector<std::unique_ptr<automation::Client>> clients;
    std::function<void()> hostGone;
    const int endSignalEnd = openEndSignals();
    // The host may be waiting for a person.
    automation::whileWaiting(&subEndIfAsked);
    ProgramSetup setup;
    setup.strCommand = command;
    setup.instanceFile = profile + "/orvelle.lock";
    setup.ownLoop = true;
    setup.endSignalled = [] { return endSignalled != 0; };
    setup.host = [&] {
        if (clients.empty() || !clients.back()->isConnected())
            clients.push_back(automation::Client::connect(profile + "/desk.socket", [&] { hostGone(); }));
        return clients.back()->root();
    };
    ProgramRun run(std::move(setup), [] { QCoreApplication::exit(); });
    hostGone = [&] { run.hostGone(); };
    addEngines(run.copy());

    QSocketNotifier endSignals(endSignalEnd, QSocketNotifier::Read);
    QObject::connect(&endSignals, &QSocketNotifier::activated, &endSignals, [&] {
        endSignals.setEnabled(false);
        run.quit();
    });
    run.start();
    if (run.alive())
        QCoreApplication::exec();
    return run.exitStatus();
}

} // namespace

int main(int argc, char **argv) {
    // A limit on the size of files then fails the write, as a full disk does, and the program says so.
    std::signal(SIGXFSZ, SIG_IGN);
    const std::unique_ptr<QCoreApplication> application = window::makeApplication(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments == QStringList{"--help"}) {
        std::puts("usage: orvelle [LANGUAGE|Ticket]\n"
                  "Runs against the desk of the profile folder $ORVELLE_PROFILE.\n"
                  "LANGUAGE is a number from 1 to 15; Ticket makes a ticket from the selected or open mail.");
        return 0;
    }
    return runProgram(arguments.join(u' '));
}

#include "desk/commands/commands.h"
#include "desk/commands/homepage.h"
#include "desk/commands/output.h"
#include "desk/content/folderpath.h"
#include "desk/host/desk.h"
#include "desk/objects/explorer.h"
#include "desk/objects/explorers.h"
#include "desk/objects/openwindows.h"
#include "desk/objects/session.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace desk {
namespace {

/// The end that a signal handler writes to.
int signalPipe = -1;
/// How often the program has been told to end.
volatile std::sig_atomic_t signalCount = 0;

void onSignal(int) {
    signalCount = signalCount + 1;
    const char byte = 0;
    static_cast<void>(!::write(signalPipe, &byte, 1));
}

/// Turns the signals that end a program into an orderly end of the event loop.
class EndSignals {
  public:
    EndSignals() {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
            throw Failure(failures::unspecified, QStringLiteral("No pipe can be made."));
        signalPipe = ends[1];
        m_notifier = std::make_unique<QSocketNotifier>(ends[0], QSocketNotifier::Read);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [end = ends[0]] {
            std::array<char, 16> taken;
            while (::read(end, taken.data(), taken.size()) > 0) {
            }
            QCoreApplication::quit();
        });
        struct sigaction action {};
        action.sa_handler = onSignal;
        for (const int signal : {SIGTERM, SIGINT, SIGHUP})
            ::sigaction(signal, &action, nullptr);
    }

  private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};

void complain(const QString &problem) { std::fprintf(stderr, "orvelle-desk: %s\n", problem.toUtf8().constData()); }

/// The program that the home page of a shown folder names is started once per showing.
void followHomePages(Session &session) {
    session.folderShown = [folder = session.profile().folder()](const FolderRecord &shown) {
        if (!shown.homePageOn)
            return;
        QString problem;
        const std::optional<QString> program = startProgramOf(shown.homePageUrl, problem);
        if (program && !startProgram(*program, folder))
            problem = QStringLiteral("The program %1 can't be started.").arg(*program);
        if (!problem.isEmpty())
            complain(problem);
    };
}

/// The folder that is asked for, which is remembered, or the one remembered, or the Inbox.
FolderPlace firstFolder(Session &session, const QString &asked) {
    if (!asked.isEmpty()) {
        FolderPlace place = folderAt(session, asked);
        session.profile().setOpenPath(pathOf(*place.store, place.folder));
        return place;
    }
    FolderPlace place{&session.mailbox(), session.specialFolder(SpecialFolder::Inbox)};
    const QString remembered = session.profile().openPath();
    if (!remembered.isEmpty())
        Attempt([&] { place = folderAt(session, remembered); });
    return place;
}

} // namespace

int runCommand(const CommandLine &line) {
    const EndSignals signals;
    Desk desk(line.desk);
    // The event loop may be far while many new items are told.
    desk.session().isEnding = [] { return signalCount > 0; };
    desk.onProblem = complain;
    Session &session = desk.session();
    const FolderPlace place = firstFolder(session, line.open);
    desk.listen();
    session.quitAsked = [] { QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection); };
    followHomePages(session);
    session.windows()
        .explorerCollection(session.weak_from_this())
        ->open(session.folder(*place.store, place.folder.id))
        ->Display();
    const QString socket = session.profile().socket();
    if (line.json)
        printJson(QJsonObject{{"ready", true}, {"socket", socket}});
    else
        printLine(QStringLiteral("ready ") + socket);
    const int status = QCoreApplication::exec();
    const int signalsBefore = signalCount;
    desk.quit([&] { return signalCount > std::max(1, signalsBefore); });
    return status;
}

} // namespace desk

// Mails per second on the whole road from a monitored folder to a ticket: with the program in the desk's process, with
// the two in processes of their own, and the floor: the commits that the road made, replayed with as many pages each
// through the bare database library.
//
// The three run in turn on the same mails. ORVELLE_BENCH_MAILS gives their number (default 200).

#include "core/main/programrun.h"
#include "core/process.h"
#include "core/runtime.h"
#include "database/connection.h"
#include "database/creation.h"
#include "desk/objects/desk.h"
#include "desk/objects/itemmessage.h"
#include "desk/objects/session.h"
#include "outlook/host/host.h"
#include "platform/registry/registry.h"
#include "platform/safeobjects/safeobjects.h"
#include "platform/scripting/components.h"
#include "platform/scripting/path.h"
#include "reference/settings.h"
#include "wallog.h"

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>

namespace {

using Seconds = std::chrono::duration<double>;

int mailCount() {
    const int given = qEnvironmentVariableIntValue("ORVELLE_BENCH_MAILS");
    return given > 0 ? given : 200;
}

/// The example mails but the replies, over and over.
const std::vector<QByteArray> &mails() {
    static const std::vector<QByteArray> all = [] {
        std::vector<QByteArray> messages;
        const QDir folder(QStringLiteral(ORVELLE_EXAMPLES));
        for (const QString &name : folder.entryList({QStringLiteral("*.eml")}, QDir::Files, QDir::Name)) {
            QFile file(folder.filePath(name));
            if (file.open(QIODevice::ReadOnly))
                messages.push_back(file.readAll());
        }
        return messages;
    }();
    return all;
}

/// The commits of one mail's road, file by file.
using MailWork = std::array<std::vector<int>, 3>;

/// A desk in this process with a helpdesk on it.
class Situation {
  public:
    Situation() {
        QDir(m_folder.path()).mkpath(QStringLiteral("program"));
        QFile::copy(QStringLiteral(ORVELLE_HOME_FILES "/OrvelleForm.fdm"), path("program/OrvelleForm.fdm"));
        desk::DeskOptions options;
        options.profile = path("profile");
        options.user = QStringLiteral("Alma Tester");
        m_desk = std::make_unique<desk::Desk>(options);
        const host::Application application(m_desk->application());
        const host::NameSpace mapi = application.GetNamespace("MAPI");
        m_tickets = mapi.Folders("Public Folders").Folders().Add("Helpdesk", 6);
        m_tickets.WebViewURL("file:" + scripting::pathText(path("program/Orvelle.htm")));
        m_intake = mapi.GetDefaultFolder(6);
        application.Explorers().Add(m_tickets, 0).Display();
        makeDatabase();
        for (const char *file : {"profile/mailbox.store", "profile/public.store", "program/Orvelle.mdb"})
            m_logs.emplace_back(path(file));
    }

    [[nodiscard]] QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    [[nodiscard]] desk::Desk &desk() { return *m_desk; }
    [[nodiscard]] QString programFolder() const { return scripting::pathText(path("program")); }

    /// Whether a copy of the program watches the folder: its flag item lies there.
    [[nodiscard]] bool watched() const { return m_intake.Items().Count() == 1; }

    /// Puts a mail into the monitored folder, as another process would.
    void put(const QByteArray &bytes) {
        if (!m_otherProcess)
            m_otherProcess = std::make_unique<desk::Store>(path("profile/mailbox.store"));
        const desk::IncomingItem item = desk::incomingItem(bytes);
        m_otherProcess->insert(m_otherProcess->specialFolder(desk::SpecialFolder::Inbox)->id, item.fields, item.parts);
    }

    [[nodiscard]] MailWork work() {
        MailWork done;
        for (std::size_t file = 0; file < done.size(); ++file)
            done[file] = m_logs[file].commits();
        return done;
    }

    [[nodiscard]] qint32 converted() const { return m_intake.Folders("Converted").Items().Count(); }

  private:
    void makeDatabase() const {
        ProgramCopy copy;
        const ProgramCopy::Scope scope(copy);
        strProgramFolderOverride = programFolder();
        registry::fileOverride = path("profile/registry.ini");
        for (const QString &progId : safeobjects::progIds())
            scripting::Components::setInstalled(progId, true);
        strDBPath = programFolder() + "\\";
        strDBFileName = "Orvelle.mdb";
        LoadLanguages(1);
        subCreateSettings();
        fncCreateAccessDB(strDBPath + strDBFileName);
        objSettings->EmailFolders->FromString("\\\\Mailbox - Alma Tester\\Inbox");
        objSettings->OtherSettings->SetValue("ConvertedEmailSubject", "Helpdesk Ticket {[TICKETID]}");
        objSettings->OtherSettings->SetValue("ConvertedEmailMessage", "Your mail is ticket [TICKETID].");
        objSettings->SaveSettings();
        subCloseConnection();
        copy.clear();
    }

    QTemporaryDir m_folder{QStringLiteral(ORVELLE_BENCH_FOLDER "/intake-XXXXXX")};
    std::unique_ptr<desk::Desk> m_desk;
    std::unique_ptr<desk::Store> m_otherProcess;
    host::MAPIFolder m_tickets;
    host::MAPIFolder m_intake;
    std::vector<WalReader> m_logs;
};

/// One mail's time per mail, and what was written; set by the last run of each kind.
struct Result {
    double secondsPerMail = 0;
    std::vector<MailWork> work;
};
Result inProcess;
Result twoProcesses;

/// Converts the mails one after the other. The time is that from the desk's look at the folder, where it raises the
/// event, until the program has filed the mail.
Result convert(Situation &situation) {
    Result result;
    Seconds total{};
    const int count = mailCount();
    static_cast<void>(situation.work());
    for (int i = 0; i < count; ++i) {
        situation.put(mails()[static_cast<std::size_t>(i) % mails().size()]);
        static_cast<void>(situation.work());
        QElapsedTimer timer;
        timer.start();
        situation.desk().lookAround();
        total += std::chrono::nanoseconds(timer.nsecsElapsed());
        result.work.push_back(situation.work());
    }
    if (situation.converted() != count) {
        std::fprintf(stderr, "Only %d of %d mails were converted.\n", situation.converted(), count);
        std::exit(1);
    }
    result.secondsPerMail = total.count() / count;
    return result;
}

void report(benchmark::State &state, const Result &result) {
    std::size_t commits = 0;
    double pages = 0;
    for (const MailWork &mail : result.work) {
        for (const std::vector<int> &file : mail) {
            commits += file.size();
            for (const int size : file)
                pages += size;
        }
    }
    const auto count = static_cast<double>(result.work.size());
    state.counters["mails/s"] = 1 / result.secondsPerMail;
    state.counters["commits/mail"] = static_cast<double>(commits) / count;
    state.counters["kB/mail"] = pages * 4096 / 1000 / count;
}

void oneProcess(benchmark::State &state) {
    for ([[maybe_unused]] const auto &_ : state) {
        Situation situation;
        ProgramSetup setup;
        setup.host = [&] { return situation.desk().application(); };
        setup.strProgramFolder = situation.programFolder();
        ProgramRun run(std::move(setup));
        {
            const ProgramCopy::Scope scope(run.copy());
            registry::fileOverride = situation.path("profile/registry.ini");
        }
        run.start();
        if (!situation.watched()) {
            state.SkipWithError("the program does not watch the folder");
            return;
        }
        inProcess = convert(situation);
        state.SetIterationTime(inProcess.secondsPerMail * mailCount());
        run.quit();
    }
    report(state, inProcess);
}

void acrossProcesses(benchmark::State &state) {
    for ([[maybe_unused]] const auto &_ : state) {
        Situation situation;
        situation.desk().listen();
        QProcess orvelle;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("ORVELLE_PROFILE", situation.path("profile"));
        environment.insert("ORVELLE_HOME", situation.path("program"));
        environment.insert("ORVELLE_UNATTENDED", "1");
        orvelle.setProcessEnvironment(environment);
        orvelle.setProcessChannelMode(QProcess::ForwardedChannels);
        orvelle.start(QCoreApplication::applicationDirPath() + "/orvelle");
        QElapsedTimer waited;
        waited.start();
        while (!situation.watched()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
            if (waited.elapsed() > 20000) {
                state.SkipWithError("orvelle did not start watching");
                return;
            }
        }
        // The program is in its event loop again a moment after the flag item came.
        waited.restart();
        while (waited.elapsed() < 300)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        twoProcesses = convert(situation);
        state.SetIterationTime(twoProcesses.secondsPerMail * mailCount());
        orvelle.terminate();
        waited.restart();
        while (orvelle.state() != QProcess::NotRunning && waited.elapsed() < 5000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    report(state, twoProcesses);
}

/// A file with one table, and nothing but commits of so many pages each.
class BareFile {
  public:
    explicit BareFile(const QString &path) {
        sqlite3_open(path.toUtf8().constData(), &m_database);
        sqlite3_exec(
            m_database,
            "PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL; CREATE TABLE t(id INTEGER PRIMARY KEY, d BLOB);",
            nullptr, nullptr, nullptr);
        sqlite3_prepare_v2(m_database, "INSERT INTO t(d) VALUES(zeroblob(?))", -1, &m_insert, nullptr);
    }
    ~BareFile() {
        sqlite3_finalize(m_insert);
        sqlite3_close(m_database);
    }
    BareFile(const BareFile &) = delete;
    BareFile &operator=(const BareFile &) = delete;

    void commit(int pages) {
        // A row goes to one leaf page; what is beyond it to overflow pages of 4092 bytes each.
        constexpr int overflowPage = 4092;
        sqlite3_bind_int(m_insert, 1, pages > 1 ? (pages - 1) * overflowPage : 100);
        if (sqlite3_step(m_insert) != SQLITE_DONE)
            std::abort();
        sqlite3_reset(m_insert);
    }

  private:
    sqlite3 *m_database = nullptr;
    sqlite3_stmt *m_insert = nullptr;
};

double floorOf(const std::vector<MailWork> &work) {
    const QTemporaryDir folder(QStringLiteral(ORVELLE_BENCH_FOLDER "/floor-XXXXXX"));
    std::array<BareFile, 3> files{BareFile(folder.filePath("1")), BareFile(folder.filePath("2")),
                                  BareFile(folder.filePath("3"))};
    QElapsedTimer timer;
    timer.start();
    for (const MailWork &mail : work) {
        for (std::size_t file = 0; file < files.size(); ++file) {
            for (const int pages : mail[file])
                files[file].commit(pages);
        }
    }
    return static_cast<double>(timer.nsecsElapsed()) / 1e9 / static_cast<double>(work.size());
}

BENCHMARK(oneProcess)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(acrossProcesses)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    for (const auto &[name, result] :
         {std::pair{"one process", &inProcess}, std::pair{"two processes", &twoProcesses}}) {
        if (result->work.empty())
            continue;
        const double bare = floorOf(result->work);
        std::printf("%-14s %6.0f mails/s, floor %6.0f mails/s, ratio %.2f\n", name, 1 / result->secondsPerMail,
                    1 / bare, result->secondsPerMail / bare);
    }
    return 0;
}

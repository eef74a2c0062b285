#include "helpdesk.h"

#include "desk/content/itemmessage.h"
#include "desk/objects/session.h"
#include "desk/transport/mailrules.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/database/connection.h"
#include "orvelle/database/creation.h"
#include "orvelle/reference/settings.h"
#include "platform/ado/jet/engine.h"
#include "platform/registry/registry.h"
#include "platform/safeobjects/safeobjects.h"
#include "platform/scripting/components.h"
#include "platform/scripting/path.h"

#include <sqlite3.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>

#include <cstdio>

using Seconds = std::chrono::duration<double>;

int numberFrom(const char *variable, int otherwise) {
    const int given = qEnvironmentVariableIntValue(variable);
    return given > 0 ? given : otherwise;
}

namespace {
/// On a disk as those of real helpdesks, unless ORVELLE_BENCH_DIR names another place.
QString benchFolder() { return qEnvironmentVariable("ORVELLE_BENCH_DIR", QStringLiteral(ORVELLE_BENCH_FOLDER)); }
} // namespace

Situation::Situation() : m_folder(benchFolder() + QStringLiteral("/intake-XXXXXX")) {
    QDir(m_folder.path()).mkpath(QStringLiteral("program"));
    QFile::copy(QStringLiteral(ORVELLE_HOME_FILES "/OrvelleForm.fdm"), path("program/OrvelleForm.fdm"));
    desk::DeskOptions options;
    options.profile = path("profile");
    options.user = QStringLiteral("Alma Tester");
    m_desk = std::make_unique<desk::Desk>(options);
    // A few people send thousands of mails here, and each confirmation is to go out.
    desk::saveMailRules(m_desk->session().profile(), {.mostAnHour = 1'000'000});
    const host::Application application(m_desk->application());
    const host::NameSpace mapi = application.GetNamespace("MAPI");
    m_tickets = mapi.Folders("Public Folders").Folders().Add("Helpdesk", 6);
    m_tickets.WebViewURL("file:" + scripting::pathText(path("program/Orvelle.htm")));
    m_intake = mapi.GetDefaultFolder(6);
    application.Explorers().Add(m_tickets, 0).Display();
    static_cast<void>(m_intake.Folders().Add("Converted"));
    makeDatabase();
    for (const char *file : {"profile/mailbox.store", "profile/public.store", "program/Orvelle.mdb"})
        m_logs.emplace_back(path(file));
}

QString Situation::programFolder() const { return scripting::pathText(path("program")); }

host::Items Situation::converted() const { return m_intake.Folders("Converted").Items(); }

MailWork Situation::work() {
    MailWork done;
    for (std::size_t file = 0; file < done.size(); ++file)
        done[file] = m_logs[file].commits();
    return done;
}

void Situation::withDatabase(const std::function<void()> &step) const {
    ProgramCopy copy;
    const ProgramCopy::Scope scope(copy);
    ado::addJetEngine();
    strProgramFolderOverride = programFolder();
    registry::fileOverride = path("profile/registry.ini");
    strDBPath = programFolder() + "\\";
    strDBFileName = "Orvelle.mdb";
    LoadLanguages(1);
    subCreateSettings();
    step();
    subCloseConnection();
    copy.clear();
}

void Situation::makeDatabase() const {
    withDatabase([] {
        for (const QString &progId : safeobjects::progIds())
            scripting::Components::setInstalled(progId, true);
        fncCreateAccessDB(strDBPath + strDBFileName);
        objSettings->EmailFolders->FromString("\\\\Mailbox - Alma Tester\\Inbox");
        objSettings->OtherSettings->SetValue("ConvertedEmailSubject", "Helpdesk Ticket {[TICKETID]}");
        objSettings->OtherSettings->SetValue("ConvertedEmailMessage", "Your mail is ticket [TICKETID].");
        objSettings->SaveSettings();
    });
}

void Situation::set(const QString &name, const QString &value) const {
    withDatabase([&] {
        objSettings->OtherSettings->FromRS(fncReturnRecordset("tblOtherSettings", true, true, false));
        objSettings->OtherSettings->SetValue(name, value);
        objSettings->OtherSettings->ToRS(fncReturnRecordset("tblOtherSettings", false, true, false));
    });
}

void Feeder::put(const QByteArray &message) {
    const desk::IncomingItem item = desk::incomingItem(message);
    m_store.insert(m_store.specialFolder(desk::SpecialFolder::Inbox)->id, item.fields, item.parts);
}

OtherProcess::OtherProcess(Situation &situation) {
    situation.desk().listen();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("ORVELLE_PROFILE", situation.path("profile"));
    environment.insert("ORVELLE_HOME", situation.path("program"));
    environment.insert("ORVELLE_UNATTENDED", "1");
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    m_process.start(QCoreApplication::applicationDirPath() + "/orvelle");
    QElapsedTimer waited;
    waited.start();
    while (!situation.watched()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
        if (waited.elapsed() > 20000)
            return;
    }
    m_isWatching = true;
    // The program is in its event loop again a moment after the flag item came.
    waited.restart();
    while (waited.elapsed() < 300)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

OtherProcess::~OtherProcess() {
    m_process.terminate();
    QElapsedTimer waited;
    waited.start();
    while (m_process.state() != QProcess::NotRunning && waited.elapsed() < 5000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

Result convert(Situation &situation, int count, const std::function<void(int)> &put) {
    constexpr qint64 patience = 20000;
    Result result;
    Seconds total{};
    static_cast<void>(situation.work());
    const host::Items converted = situation.converted();
    int done = 0;
    const auto arrival = converted.connect("ItemAdd", [&](ValueList &) { ++done; });
    for (int i = 0; i < count; ++i) {
        put(i);
        static_cast<void>(situation.work());
        QElapsedTimer timer;
        timer.start();
        situation.desk().lookAround();
        // A program in a process of its own has answered the event by now, and has its work before it.
        while (done <= i && timer.elapsed() < patience)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        total += std::chrono::nanoseconds(timer.nsecsElapsed());
        result.work.push_back(situation.work());
    }
    if (done != count) {
        std::fprintf(stderr, "Only %d of %d mails were converted.\n", done, count);
        std::exit(1);
    }
    result.secondsPerMail = total.count() / count;
    return result;
}

Volume volumeOf(const Result &result) {
    Volume volume;
    for (const MailWork &mail : result.work) {
        for (const std::vector<int> &file : mail) {
            volume.commitsPerMail += static_cast<double>(file.size());
            for (const int pages : file)
                volume.kilobytesPerMail += pages * 4.096;
        }
    }
    const auto count = static_cast<double>(result.work.size());
    return {volume.commitsPerMail / count, volume.kilobytesPerMail / count};
}

void report(benchmark::State &state, const Result &result) {
    const Volume volume = volumeOf(result);
    state.counters["mails/s"] = 1 / result.secondsPerMail;
    state.counters["commits/mail"] = volume.commitsPerMail;
    state.counters["kB/mail"] = volume.kilobytesPerMail;
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

Floor::Floor() : m_folder(benchFolder() + QStringLiteral("/floor-XXXXXX")) {
    for (std::size_t file = 0; file < std::tuple_size_v<MailWork>; ++file)
        m_files.push_back(std::make_unique<BareFile>(m_folder.filePath(QString::number(file))));
}

Floor::~Floor() = default;

double Floor::replay(const std::vector<MailWork> &work) {
    QElapsedTimer timer;
    timer.start();
    for (const MailWork &mail : work) {
        for (std::size_t file = 0; file < m_files.size(); ++file) {
            for (const int pages : mail[file])
                m_files[file]->commit(pages);
        }
    }
    return static_cast<double>(timer.nsecsElapsed()) / 1e9 / static_cast<double>(work.size());
}

void printBesideFloor(const char *name, const Result &result) {
    if (result.work.empty())
        return;
    const double bare = Floor().replay(result.work);
    std::printf("%-14s %6.0f mails/s, floor %6.0f mails/s, ratio %.2f\n", name, 1 / result.secondsPerMail, 1 / bare,
                result.secondsPerMail / bare);
}

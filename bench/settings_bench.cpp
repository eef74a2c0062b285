// What loading and saving the reference data costs beside the floor: the same rows read through the bare database
// library. Each comparison runs both in turns, so that the machine's load meets both alike, and prints the ratio.
//
// The database lies in the directory ORVELLE_BENCH_DIR (default: the current one).

#include "desk/host/desk.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/database/connection.h"
#include "orvelle/database/creation.h"
#include "orvelle/reference/settings.h"
#include "orvelle/ticketfolder/getsettings.h"
#include "platform/ado/jet/engine.h"
#include "platform/registry/registry.h"

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

constexpr int callerCount = 5000;
constexpr int typeCount = 500;
constexpr int responsibleCount = 200;

/// A copy of the program on a database with lists of the sizes above.
class Filled {
  public:
    Filled() {
        ado::addJetEngine();
        strProgramFolderOverride = m_folder.path();
        registry::fileOverride = m_folder.filePath("registry.ini");
        LoadLanguages(1);
        strDBFileName = "Orvelle.mdb";
        strDBPath = m_folder.path();
        subCreateSettings();
        fncCreateAccessDB(m_folder.path() + "\\Orvelle.mdb");
        desk::DeskOptions options;
        options.profile = m_folder.filePath("profile");
        options.user = "Alma Tester";
        m_desk = std::make_unique<desk::Desk>(options);
        ouaOutlook = host::Application(m_desk->application());
        onsMAPI = ouaOutlook->GetNamespace("MAPI");
        oufTickets = onsMAPI->Folders("Public Folders").Folders().Add("Helpdesk", 6);
        oufTickets->WebViewURL("file:" + m_folder.path() + "/Orvelle.htm");
        fill();
    }
    ~Filled() { subCloseConnection(); }
    Filled(const Filled &) = delete;
    Filled &operator=(const Filled &) = delete;

    static cCallersList callers(int count) {
        ValueRows rows;
        for (int at = 0; at < count; ++at)
            rows.append({QString("Caller %1 of the third floor").arg((at * 7919) % count),
                         QString("caller%1@example.com").arg(at), QString("08-%1").arg(100000 + at), "Staff",
                         "Sits by the window"});
        cCallersList list;
        list.FromArray(rows);
        return list;
    }

    [[nodiscard]] QString file() const { return m_folder.filePath("Orvelle.mdb"); }

  private:
    static void fill() {
        cSettings &settings = **objSettings;
        *settings.Callers = callers(callerCount);
        ValueRows types;
        for (int at = 0; at < typeCount; ++at)
            types.append({QString("Problem %1").arg((at * 7919) % typeCount), QString("Category %1").arg(at % 20), 30});
        settings.ProblemTypes->FromArray(types);
        ValueRows persons;
        for (int at = 0; at < responsibleCount; ++at)
            persons.append({QString("Person %1").arg(at), QString("person%1@example.com").arg(at), 95.5});
        settings.Responsibles->FromArray(persons);
        settings.Statuses->FromString("Open\r\nWaiting\r\nClosed");
        settings.CallerCategories->FromString("Staff\r\nGuest");
        settings.SaveSettings();
        subCloseConnection();
    }

    QTemporaryDir m_folder{qEnvironmentVariable("ORVELLE_BENCH_DIR", ".") + "/settings-bench-XXXXXX"};
    ProgramCopy m_copy;
    ProgramCopy::Scope m_scope{m_copy};
    std::unique_ptr<desk::Desk> m_desk;
};

/// Every column of every row of the selections, as the library gives them. Opens the file and closes it.
qsizetype readBare(const QString &file, const QStringList &selections) {
    qsizetype length = 0;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "floor");
        database.setDatabaseName(file);
        database.open();
        for (const QString &selection : selections) {
            QSqlQuery query(database);
            query.setForwardOnly(true);
            query.exec(selection);
            const int columns = query.record().count();
            while (query.next())
                for (int at = 0; at < columns; ++at)
                    length += query.value(at).toString().size();
        }
    }
    QSqlDatabase::removeDatabase("floor");
    return length;
}

double seconds(const std::function<void()> &step) {
    const auto start = std::chrono::steady_clock::now();
    step();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Times the step, and reports how many times the floor's median its own median is.
void compare(benchmark::State &state, const std::function<void()> &step, const std::function<void()> &floor) {
    std::vector<double> steps;
    std::vector<double> floors;
    for (auto _ : state) {
        floors.push_back(seconds(floor));
        steps.push_back(seconds(step));
        state.SetIterationTime(steps.back());
    }
    const auto median = [](std::vector<double> &times) {
        std::nth_element(times.begin(), times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2), times.end());
        return times[times.size() / 2];
    };
    state.counters["floor_ms"] = median(floors) * 1000;
    state.counters["ratio"] = median(steps) / median(floors);
}

void GetSettings(benchmark::State &state) {
    const Filled filled;
    compare(
        state, [] { subGetSettings(); },
        [&] {
            benchmark::DoNotOptimize(readBare(
                filled.file(), {"SELECT * FROM tblPersons ORDER BY strPersonName",
                                "SELECT * FROM tblTypes ORDER BY strTypeDescription",
                                "SELECT * FROM tblCallerCategories ORDER BY strCallerCategory",
                                "SELECT * FROM tblStatuses ORDER BY strStatus",
                                "SELECT * FROM tblCallers ORDER BY strFullName", "SELECT * FROM tblOtherSettings"}));
        });
}
BENCHMARK(GetSettings)->Unit(benchmark::kMillisecond)->UseManualTime();

void SaveUnchangedCallers(benchmark::State &state) {
    const Filled filled;
    const cCallersList list = Filled::callers(callerCount);
    compare(
        state, [&] { list.ToRS(fncReturnRecordset("tblCallers", false, true, false)); },
        [&] { benchmark::DoNotOptimize(readBare(filled.file(), {"SELECT * FROM tblCallers"})); });
}
BENCHMARK(SaveUnchangedCallers)->Unit(benchmark::kMillisecond)->UseManualTime();

void SaveNewCallers(benchmark::State &state) {
    const Filled filled;
    const cCallersList none;
    const cCallersList list = Filled::callers(10000);
    for (auto _ : state) {
        state.PauseTiming();
        none.ToRS(fncReturnRecordset("tblCallers", false, true, false));
        state.ResumeTiming();
        list.ToRS(fncReturnRecordset("tblCallers", false, true, false));
    }
}
BENCHMARK(SaveNewCallers)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

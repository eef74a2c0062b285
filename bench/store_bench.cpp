// What the store costs: saves beside the floor that the engine sets (the same bytes in as many durable commits, one
// table, no index, no layer between), and look-ups among many items.
//
// Saves go to the directory ORVELLE_BENCH_DIR (default: the current one), since a disk in memory has no durable
// commits. ORVELLE_BENCH_ITEMS sets the size of the folder that is searched (default 100000).

#include "desk/host/desk.h"
#include "desk/objects/mapifolder.h"
#include "desk/objects/session.h"
#include "desk/store/connection.h"
#include "desk/store/itemwriter.h"
#include "desk/store/store.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <sqlite3.h>

namespace {

using namespace desk;

QString benchDirectory() {
    return qEnvironmentVariable("ORVELLE_BENCH_DIR", QStringLiteral(".")) + QStringLiteral("/store-bench-XXXXXX");
}

ItemRecord smallItem() {
    ItemRecord item;
    item.messageClass = QStringLiteral("IPM.Note");
    item.subject = QStringLiteral("Printer on the second floor does not print");
    item.senderName = QStringLiteral("Ann Example");
    item.senderAddress = QStringLiteral("ann@example.com");
    item.senderAddressType = QStringLiteral("SMTP");
    item.to = QStringLiteral("helpdesk@example.com");
    item.messageId = QStringLiteral("20041122.093000.1@example.com");
    return item;
}

ItemParts bodyOf(qint64 bytes) { return {.bodies = Bodies{.plain = QString(bytes, u'x'), .html = {}}}; }

/// A store with one item, in a directory that goes with it.
struct OneItem {
    QTemporaryDir directory{benchDirectory()};
    Store store{directory.filePath(QStringLiteral("bench.store"))};
    ItemRecord item = store.insert(store.root().id, smallItem(), bodyOf(500));
};

/// The engine alone: one table, one prepared statement, the same durability.
class Floor {
  public:
    explicit Floor(const char *statement) {
        sqlite3_open(qPrintable(m_directory.filePath(QStringLiteral("floor.db"))), &m_database);
        run("PRAGMA journal_mode = WAL");
        run("PRAGMA synchronous = FULL");
        run("CREATE TABLE t (id INTEGER PRIMARY KEY, data BLOB)");
        run("INSERT INTO t (data) VALUES (zeroblob(500))");
        sqlite3_prepare_v2(m_database, statement, -1, &m_statement, nullptr);
        sqlite3_prepare_v2(m_database, "BEGIN IMMEDIATE", -1, &m_begin, nullptr);
        sqlite3_prepare_v2(m_database, "COMMIT", -1, &m_commit, nullptr);
    }
    ~Floor() {
        for (sqlite3_stmt *statement : {m_statement, m_begin, m_commit})
            sqlite3_finalize(statement);
        sqlite3_close(m_database);
    }
    Floor(const Floor &) = delete;
    Floor &operator=(const Floor &) = delete;

    bool commit(const QByteArray &data) {
        sqlite3_bind_blob(m_statement, 1, data.constData(), static_cast<int>(data.size()), SQLITE_STATIC);
        return step(m_begin) && step(m_statement) && step(m_commit);
    }

  private:
    static bool step(sqlite3_stmt *statement) {
        const bool isDone = sqlite3_step(statement) == SQLITE_DONE;
        sqlite3_reset(statement);
        return isDone;
    }
    void run(const char *sql) { sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr); }

    QTemporaryDir m_directory{benchDirectory()};
    sqlite3 *m_database = nullptr;
    sqlite3_stmt *m_statement = nullptr;
    sqlite3_stmt *m_begin = nullptr;
    sqlite3_stmt *m_commit = nullptr;
};

/// The bytes that a new item of that body brings to the file: its fields' texts and its body.
QByteArray bytesOfNewItem(qint64 body) {
    const ItemRecord item = smallItem();
    const qsizetype fields = (item.messageClass + item.subject + item.senderName + item.senderAddress +
                              item.senderAddressType + item.to + item.messageId)
                                 .size();
    return QByteArray(fields + body, 'x');
}

void InsertFloor(benchmark::State &state) {
    Floor floor("INSERT INTO t (data) VALUES (?)");
    const QByteArray data = bytesOfNewItem(state.range(0));
    for (auto _ : state)
        if (!floor.commit(data))
            return state.SkipWithError("the engine refused");
}
BENCHMARK(InsertFloor)->Arg(500)->Arg(20000)->Unit(benchmark::kMicrosecond)->UseRealTime();

void InsertItem(benchmark::State &state) {
    OneItem one;
    const ItemParts parts = bodyOf(state.range(0));
    for (auto _ : state)
        one.store.insert(one.item.folder, smallItem(), parts);
}
BENCHMARK(InsertItem)->Arg(500)->Arg(20000)->Unit(benchmark::kMicrosecond)->UseRealTime();

void SaveFloor(benchmark::State &state) {
    Floor floor("UPDATE t SET data = ? WHERE id = 1");
    QByteArray data = bytesOfNewItem(state.range(0));
    for (auto _ : state) {
        data[0] = data[0] == 'x' ? 'y' : 'x';
        if (!floor.commit(data))
            return state.SkipWithError("the engine refused");
    }
}
BENCHMARK(SaveFloor)->Arg(0)->Arg(20000)->Unit(benchmark::kMicrosecond)->UseRealTime();

/// The mark that clients claim a mail with: fields alone.
void SaveFields(benchmark::State &state) {
    OneItem one;
    for (auto _ : state) {
        one.item.billingInformation = one.item.billingInformation.isEmpty() ? QStringLiteral("Working...") : QString();
        one.item = one.store.save(one.item);
    }
}
BENCHMARK(SaveFields)->Unit(benchmark::kMicrosecond)->UseRealTime();

void SaveBody(benchmark::State &state) {
    OneItem one;
    ItemParts parts = bodyOf(state.range(0));
    for (auto _ : state) {
        parts.bodies->plain[0] = parts.bodies->plain[0] == u'x' ? u'y' : u'x';
        one.item = one.store.save(one.item, parts);
    }
}
BENCHMARK(SaveBody)->Arg(20000)->Unit(benchmark::kMicrosecond)->UseRealTime();

/// One folder with many items, made once: each has a subject and a number of its own, and a status shared by half.
class ManyItems {
  public:
    static ManyItems &instance() {
        static ManyItems many;
        return many;
    }
    Store &store() { return *m_store; }
    [[nodiscard]] FolderId folder() const { return m_folder; }
    [[nodiscard]] int count() const { return m_count; }

  private:
    ManyItems() {
        const QString path = m_directory.filePath(QStringLiteral("many.store"));
        m_store = std::make_unique<Store>(path);
        m_folder = m_store->root().id;
        Connection connection(path, std::chrono::milliseconds(10000));
        Transaction transaction(connection);
        ItemRecord item = smallItem();
        const qint64 first = takeNumbers(connection, m_count);
        for (int i = 0; i < m_count; ++i) {
            item.subject = QStringLiteral("Ticket %1").arg(i);
            const QList<Property> properties{
                {.name = QStringLiteral("Ticket ID"), .value = QString::number(i)},
                {.name = QStringLiteral("Status"), .value = i % 2 == 0 ? "Open" : "Closed"}};
            insertItem(connection, {.id = first + i, .folder = m_folder, .arrival = first + i}, item,
                       {.properties = properties});
        }
        transaction.commit();
    }

    int m_count =
        qEnvironmentVariableIsSet("ORVELLE_BENCH_ITEMS") ? qEnvironmentVariableIntValue("ORVELLE_BENCH_ITEMS") : 100000;
    QTemporaryDir m_directory{benchDirectory()};
    std::unique_ptr<Store> m_store;
    FolderId m_folder = 0;
};

template <class Conditions>
void find(benchmark::State &state, Conditions conditions) {
    ManyItems &many = ManyItems::instance();
    int i = 0;
    for (auto _ : state) {
        i = (i + 7919) % many.count();
        if (!many.store().find(many.folder(), conditions(i)))
            return state.SkipWithError("not found");
    }
    state.counters["items"] = many.count();
}

void FindByProperty(benchmark::State &state) {
    find(state, [](int i) { return QList<Condition>{{QStringLiteral("Ticket ID"), QString::number(i)}}; });
}
BENCHMARK(FindByProperty)->Unit(benchmark::kMicrosecond);

void FindBySubject(benchmark::State &state) {
    find(state, [](int i) { return QList<Condition>{{Field::Subject, QStringLiteral("ticket %1").arg(i)}}; });
}
BENCHMARK(FindBySubject)->Unit(benchmark::kMicrosecond);

void FindBySharedAndOwnProperty(benchmark::State &state) {
    find(state, [](int i) {
        return QList<Condition>{{QStringLiteral("Status"), i % 2 == 0 ? "Open" : "Closed"},
                                {QStringLiteral("Ticket ID"), QString::number(i)}};
    });
}
BENCHMARK(FindBySharedAndOwnProperty)->Unit(benchmark::kMicrosecond);

/// The bare library's look-up of an item by a property, with all the item's fields read.
class BareFind {
  public:
    explicit BareFind(const QString &path) {
        sqlite3_open_v2(QFile::encodeName(path).constData(), &m_database, SQLITE_OPEN_READONLY, nullptr);
        sqlite3_prepare_v2(m_database,
                           "SELECT i.* FROM properties AS p JOIN items AS i ON i.id = p.item WHERE p.name_key = ?1 AND "
                           "p.value_key = ?2 AND p.value_key <> '' AND p.folder = ?3 ORDER BY p.arrival LIMIT 1",
                           -1, &m_statement, nullptr);
    }
    ~BareFind() {
        sqlite3_finalize(m_statement);
        sqlite3_close(m_database);
    }
    BareFind(const BareFind &) = delete;
    BareFind &operator=(const BareFind &) = delete;

    bool find(FolderId folder, int number) {
        const QByteArray value = QByteArray::number(number);
        sqlite3_bind_text(m_statement, 1, "ticket id", -1, SQLITE_STATIC);
        sqlite3_bind_text(m_statement, 2, value.constData(), static_cast<int>(value.size()), SQLITE_STATIC);
        sqlite3_bind_int64(m_statement, 3, folder);
        const bool found = sqlite3_step(m_statement) == SQLITE_ROW;
        for (int column = 0; found && column < sqlite3_column_count(m_statement); ++column)
            benchmark::DoNotOptimize(sqlite3_column_blob(m_statement, column));
        sqlite3_reset(m_statement);
        return found;
    }

  private:
    sqlite3 *m_database = nullptr;
    sqlite3_stmt *m_statement = nullptr;
};

/// `Items.Find` of a ticket by its number as clients call it, and in turn with it the bare look-up of another one.
void ItemsFind(benchmark::State &state) {
    ManyItems &many = ManyItems::instance();
    const QTemporaryDir profile(benchDirectory());
    const Desk desk({.profile = profile.path(), .user = QStringLiteral("Bench"), .publicFile = many.store().path()});
    Session &session = desk.session();
    const auto items =
        automation::wrap(session.folder(session.publicStore(), many.folder()))->get(QStringLiteral("Items")).object();
    BareFind bare(many.store().path());
    using Clock = std::chrono::steady_clock;
    std::chrono::duration<double> throughObjects{};
    std::chrono::duration<double> throughLibrary{};
    int i = 0;
    for (auto _ : state) {
        i = (i + 7919) % many.count();
        const auto start = Clock::now();
        const bool isThere = bare.find(many.folder(), many.count() - 1 - i);
        const auto between = Clock::now();
        const bool isFound =
            !items->call(QStringLiteral("Find"), {QStringLiteral("[Ticket ID] =\"%1\"").arg(i)}).isNothing();
        const std::chrono::duration<double> taken = Clock::now() - between;
        if (!isThere || !isFound)
            return state.SkipWithError("not found");
        throughLibrary += between - start;
        throughObjects += taken;
        state.SetIterationTime(taken.count());
    }
    state.counters["items"] = many.count();
    state.counters["bare_us"] = 1e6 * throughLibrary.count() / static_cast<double>(state.iterations());
    state.counters["ratio"] = throughObjects / throughLibrary;
}
BENCHMARK(ItemsFind)->Unit(benchmark::kMicrosecond)->UseManualTime();

/// The first question of all about a folder: count and last item, nothing remembered.
void FirstCountAndLast(benchmark::State &state) {
    ManyItems &many = ManyItems::instance();
    for (auto _ : state) {
        Store fresh(many.store().path());
        benchmark::DoNotOptimize(fresh.nth(many.folder(), fresh.count(many.folder())));
    }
}
BENCHMARK(FirstCountAndLast)->Unit(benchmark::kMillisecond);

void WalkDownwards(benchmark::State &state) {
    ManyItems &many = ManyItems::instance();
    qint64 position = many.count();
    for (auto _ : state) {
        benchmark::DoNotOptimize(many.store().nth(many.folder(), position));
        position = position == 1 ? many.count() : position - 1;
    }
}
BENCHMARK(WalkDownwards)->Unit(benchmark::kMicrosecond);

void NothingChanged(benchmark::State &state) {
    ManyItems &many = ManyItems::instance();
    for (auto _ : state)
        benchmark::DoNotOptimize(many.store().revision());
}
BENCHMARK(NothingChanged)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

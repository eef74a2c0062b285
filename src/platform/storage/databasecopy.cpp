#include "platform/storage/databasecopy.h"

#include "platform/storage/logowner.h"
#include "platform/value/failure.h"

#include <QFileInfo>
#include <QUrl>

#include <sqlite3.h>

namespace storage {

namespace {

Failure databaseFailure(const QString &path, int code, const QString &detail) {
    switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return {failures::unspecified,
                QStringLiteral("%1 is being written by another program and did not become free in time; try again.")
                    .arg(path)};
    case SQLITE_FULL:
        return {failures::noDiskSpace,
                QStringLiteral("%1 can't be written: its disk is full; make room and try again.").arg(path)};
    case SQLITE_IOERR:
        return {
            failures::noDiskSpace,
            QStringLiteral("%1 can't be read or written (%2); check its disk and the room on it.").arg(path, detail)};
    case SQLITE_PERM:
    case SQLITE_READONLY:
    case SQLITE_CANTOPEN:
    case SQLITE_AUTH:
        return {failures::accessDenied,
                QStringLiteral("%1 can't be opened; check your rights to it, to the files beside it and to its folder.")
                    .arg(path)};
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return {failures::unspecified, QStringLiteral("%1 is damaged or no database (%2).").arg(path, detail)};
    default:
        return {failures::unspecified, QStringLiteral("%1 can't be copied: %2.").arg(path, detail)};
    }
}

[[noreturn]] void fail(sqlite3 *database, const QString &path, int code) {
    throw databaseFailure(path, code, QString::fromUtf8(sqlite3_errmsg(database)));
}

/// Runs a statement and hands over the first column of each row, as texts.
QStringList ask(sqlite3 *database, const QString &path, const QString &sql) {
    sqlite3_stmt *prepared = nullptr;
    int code = sqlite3_prepare_v2(database, sql.toUtf8().constData(), -1, &prepared, nullptr);
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)> statement(prepared, &sqlite3_finalize);
    if (code != SQLITE_OK)
        fail(database, path, code);
    QStringList rows;
    while ((code = sqlite3_step(prepared)) == SQLITE_ROW)
        rows << QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(prepared, 0)));
    if (code != SQLITE_DONE)
        fail(database, path, code);
    return rows;
}

Counts countsOf(sqlite3 *database, const QString &path) {
    Counts counts;
    for (QString table : ask(database, path, QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'"))) {
        const QString name = table;
        const QString quoted = u'"' + table.replace(u'"', QStringLiteral("\"\"")) + u'"';
        counts[name] = ask(database, path, QStringLiteral("SELECT count(*) FROM ") + quoted).value(0).toLongLong();
    }
    return counts;
}

void copyPages(sqlite3 *source, const QString &sourcePath, sqlite3 *target, const QString &targetPath,
               const Progress &progress) {
    constexpr int portion = 512;
    const qint64 pageSize = ask(source, sourcePath, QStringLiteral("PRAGMA page_size")).value(0).toLongLong();
    sqlite3_backup *backup = sqlite3_backup_init(target, "main", source, "main");
    if (backup == nullptr)
        fail(target, targetPath, sqlite3_errcode(target));
    int code = SQLITE_OK;
    while ((code = sqlite3_backup_step(backup, portion)) == SQLITE_OK) {
        const qint64 all = sqlite3_backup_pagecount(backup);
        if (progress)
            progress((all - sqlite3_backup_remaining(backup)) * pageSize, all * pageSize);
    }
    const int finished = sqlite3_backup_finish(backup);
    if (code != SQLITE_DONE || finished != SQLITE_OK) {
        const int problem = code != SQLITE_DONE ? code : finished;
        // A failure of the source shows as damage of the source; any other one is the target's.
        const bool isSources = (problem & 0xFF) == SQLITE_CORRUPT || (problem & 0xFF) == SQLITE_NOTADB;
        throw databaseFailure(isSources ? sourcePath : targetPath, problem, QString::fromUtf8(sqlite3_errstr(problem)));
    }
}

} // namespace

void Moment::Closer::operator()(sqlite3 *database) const { sqlite3_close(database); }

Moment::Database Moment::open(const QString &file, std::chrono::milliseconds wait) {
    refuseForeignLog(file);
    sqlite3 *opened = nullptr;
    const int code =
        sqlite3_open_v2(file.toUtf8().constData(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    Database database(opened);
    if (code != SQLITE_OK)
        fail(opened, file, code);
    sqlite3_extended_result_codes(opened, 1);
    sqlite3_busy_timeout(opened, static_cast<int>(wait.count()));
    return database;
}

Moment::Moment(const QStringList &files, std::chrono::milliseconds wait) : m_files(files) {
    std::vector<Database> gates;
    // While all gates are held nobody commits anywhere, so that what is read meanwhile is of one moment.
    for (const QString &file : files) {
        if (files.size() == 1)
            break;
        gates.push_back(open(file, wait));
        ask(gates.back().get(), file, QStringLiteral("BEGIN IMMEDIATE"));
    }
    for (const QString &file : files) {
        m_databases.push_back(open(file, wait));
        ask(m_databases.back().get(), file, QStringLiteral("BEGIN"));
        // The moment is that of the first reading.
        ask(m_databases.back().get(), file, QStringLiteral("SELECT count(*) FROM sqlite_master"));
    }
}

Moment::~Moment() = default;

Counts Moment::copy(qsizetype at, const QString &target, const Progress &progress) const {
    const QString &file = m_files.at(at);
    sqlite3 *source = m_databases.at(static_cast<std::size_t>(at)).get();
    {
        const Database made = open(target, {});
        // A copy that is cut off is thrown away; a whole one is brought to the disk by who gives it its name.
        ask(made.get(), target, QStringLiteral("PRAGMA journal_mode = OFF"));
        ask(made.get(), target, QStringLiteral("PRAGMA synchronous = OFF"));
        copyPages(source, file, made.get(), target, progress);
    }
    Counts counts = checkDatabase(target);
    if (counts != countsOf(source, file))
        throw Failure(
            failures::unspecified,
            QStringLiteral("The copy %1 is not the same as %2; check the disks and try again.").arg(target, file));
    return counts;
}

Counts checkDatabase(const QString &path) {
    const QByteArray name = QUrl::toPercentEncoding(QFileInfo(path).absoluteFilePath(), "/");
    sqlite3 *opened = nullptr;
    const int code = sqlite3_open_v2("file:" + name + "?immutable=1", &opened,
                                     SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX, nullptr);
    const std::unique_ptr<sqlite3, int (*)(sqlite3 *)> database(opened, &sqlite3_close);
    if (code != SQLITE_OK)
        fail(opened, path, code);
    sqlite3_extended_result_codes(opened, 1);
    sqlite3_db_config(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    const QStringList found = ask(opened, path, QStringLiteral("PRAGMA integrity_check(1)"));
    if (found != QStringList{QStringLiteral("ok")})
        throw databaseFailure(path, SQLITE_CORRUPT, found.value(0));
    return countsOf(opened, path);
}

} // namespace storage

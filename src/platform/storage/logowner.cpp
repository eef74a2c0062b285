#include "platform/storage/logowner.h"

#include "platform/value/failure.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <sqlite3.h>

#include <cstring>

namespace storage {

namespace {

/// Both numbers of a page 1.
struct Mark {
    quint32 log = 0;
    quint32 before = 0;
    bool operator==(const Mark &) const = default;
};

constexpr qsizetype beforeAt = 60;
constexpr qsizetype logAt = 68;
constexpr qsizetype markEnd = 72;

Mark markIn(const char *page) {
    return {qFromBigEndian<quint32>(page + logAt), qFromBigEndian<quint32>(page + beforeAt)};
}

using Connection = std::unique_ptr<sqlite3, int (*)(sqlite3 *)>;

/// The mark in the file itself. It is read through the engine: to close a file of one's own would let go of the locks
/// that this process holds on it by a connection.
std::optional<Mark> markOfFile(const QString &path) {
    sqlite3 *opened = nullptr;
    const int code =
        sqlite3_open_v2(path.toUtf8().constData(), &opened, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr);
    const Connection database(opened, &sqlite3_close);
    sqlite3_file *file = nullptr;
    if (code != SQLITE_OK || sqlite3_file_control(opened, "main", SQLITE_FCNTL_FILE_POINTER, &file) != SQLITE_OK ||
        file == nullptr || file->pMethods == nullptr)
        return std::nullopt;
    char head[markEnd];
    if (file->pMethods->xRead(file, head, sizeof head, 0) != SQLITE_OK)
        return std::nullopt;
    return markIn(head);
}

/// Reads a log from its beginning, as far as its checksums hold.
class LogReader {
  public:
    explicit LogReader(const QString &path) : m_file(path) {
        if (!m_file.open(QFile::ReadOnly))
            return;
        const QByteArray head = m_file.read(headBytes);
        if (head.size() < headBytes)
            return;
        constexpr quint32 magic = 0x377f0682;
        const quint32 found = number(head, 0);
        m_isBig = (found & 1U) != 0;
        m_pageSize = number(head, 8);
        m_salts = head.mid(16, 8);
        add(head.constData(), 24);
        m_isGood = (found & ~1U) == magic && m_pageSize >= 512 && m_pageSize <= 65536 && isSum(head, 24);
    }

    [[nodiscard]] bool isGood() const { return m_isGood; }
    [[nodiscard]] const QByteArray &salts() const { return m_salts; }
    [[nodiscard]] quint32 secondSalt() const { return number(m_salts, 4); }

    /// The mark in the first page 1 that the log holds.
    std::optional<Mark> firstMark() {
        while (m_isGood) {
            const QByteArray frame = m_file.read(frameBytes + m_pageSize);
            if (frame.size() < frameBytes + m_pageSize || frame.mid(8, 8) != m_salts)
                break;
            add(frame.constData(), 8);
            add(frame.constData() + frameBytes, m_pageSize);
            if (!isSum(frame, 16))
                break;
            if (number(frame, 0) == 1)
                return markIn(frame.constData() + frameBytes);
        }
        return std::nullopt;
    }

  private:
    static constexpr qsizetype headBytes = 32;
    static constexpr qsizetype frameBytes = 24;

    static quint32 number(const QByteArray &bytes, qsizetype at) {
        return qFromBigEndian<quint32>(bytes.constData() + at);
    }
    [[nodiscard]] quint32 word(const char *at) const {
        return m_isBig ? qFromBigEndian<quint32>(at) : qFromLittleEndian<quint32>(at);
    }
    void add(const char *bytes, qsizetype size) {
        for (const char *at = bytes; at < bytes + size; at += 8) {
            m_first += word(at) + m_second;
            m_second += word(at + 4) + m_first;
        }
    }
    [[nodiscard]] bool isSum(const QByteArray &bytes, qsizetype at) const {
        return number(bytes, at) == m_first && number(bytes, at + 4) == m_second;
    }

    QFile m_file;
    QByteArray m_salts;
    quint32 m_first = 0;
    quint32 m_second = 0;
    qsizetype m_pageSize = 0;
    bool m_isBig = false;
    bool m_isGood = false;
};

bool isForeign(const Mark &file, const Mark &first, quint32 salt) {
    const quint32 atBegin = first.log == salt ? first.before : first.log;
    return file.log != salt && file.log != atBegin;
}

/// What the index of the log that a connection uses says. The places are fixed by the engine's documented format.
struct LogState {
    quint32 salt = 0;
    /// Some of it is not in the database itself yet.
    bool isNeeded = false;
};

std::optional<LogState> logState(sqlite3 *database) {
    sqlite3_file *file = nullptr;
    if (sqlite3_file_control(database, "main", SQLITE_FCNTL_FILE_POINTER, &file) != SQLITE_OK || file == nullptr ||
        file->pMethods == nullptr || file->pMethods->iVersion < 2 || file->pMethods->xShmMap == nullptr)
        return std::nullopt;
    void volatile *mapped = nullptr;
    constexpr int portion = 32768;
    if (file->pMethods->xShmMap(file, 0, portion, 0, &mapped) != SQLITE_OK || mapped == nullptr)
        return std::nullopt;
    const auto at = [mapped](std::size_t place) {
        return *reinterpret_cast<const quint32 volatile *>(static_cast<const char volatile *>(mapped) + place);
    };
    constexpr std::size_t lastFrame = 16;
    constexpr std::size_t secondSalt = 36;
    constexpr std::size_t takenIn = 96;
    // The salts stand there as they do in the log.
    return LogState{qFromBigEndian(at(secondSalt)), at(takenIn) < at(lastFrame)};
}

bool run(sqlite3 *database, const QByteArray &statement) {
    return sqlite3_exec(database, statement.constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

std::optional<quint32> standingMark(sqlite3 *database) {
    sqlite3_stmt *prepared = nullptr;
    const int code = sqlite3_prepare_v2(database, "PRAGMA application_id", -1, &prepared, nullptr);
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)> statement(prepared, &sqlite3_finalize);
    if (code != SQLITE_OK || sqlite3_step(prepared) != SQLITE_ROW)
        return std::nullopt;
    return static_cast<quint32>(sqlite3_column_int(prepared, 0));
}

QByteArray assignment(const char *name, quint32 number) {
    return QByteArray("PRAGMA ") + name + " = " + QByteArray::number(static_cast<qint32>(number));
}

} // namespace

void markLog(sqlite3 *database, quint32 &known) {
    if (sqlite3_get_autocommit(database) == 0)
        return;
    const std::optional<LogState> before = logState(database);
    if (!before || !before->isNeeded || before->salt == known)
        return;
    // Another writer does it as well after its commit.
    if (!run(database, "BEGIN IMMEDIATE"))
        return;
    // A log that is wholly taken in would begin anew with this very transaction, under another salt.
    const std::optional<LogState> state = logState(database);
    const std::optional<quint32> standing = standingMark(database);
    const bool isMine = state && state->isNeeded && state->salt != 0 && standing;
    const bool isDone = isMine && *standing == state->salt;
    const bool isSet = isMine && !isDone && run(database, assignment("user_version", *standing)) &&
                       run(database, assignment("application_id", state->salt)) && run(database, "COMMIT");
    if (!isSet)
        run(database, "ROLLBACK");
    if (isSet || isDone)
        known = state->salt;
}

bool hasForeignLog(const QString &path) {
    const QString log = path + QStringLiteral("-wal");
    if (QFileInfo(log).size() == 0)
        return false;
    // Programs that have the database open may end a log and begin another between one look and the next.
    for (int attempt = 0; attempt < 100; ++attempt) {
        const std::optional<Mark> file = markOfFile(path);
        LogReader reader(log);
        const std::optional<Mark> first = reader.firstMark();
        if (!file || !first || !isForeign(*file, *first, reader.secondSalt()))
            return false;
        if (markOfFile(path) == file && LogReader(log).salts() == reader.salts())
            return true;
    }
    return false;
}

void refuseForeignLog(const QString &path) {
    if (!hasForeignLog(path))
        return;
    const QString log = path + QStringLiteral("-wal");
    throw Failure(failures::unspecified,
                  QStringLiteral("The log %2 belongs to another file than %1: probably a program was killed and a copy "
                                 "of the database was put in its place. Played into this file, the log would damage "
                                 "it; both were left as they are. To use %1 as it is, without the log's changes, move "
                                 "the log away; to have these changes, put the former file back.")
                      .arg(path, log));
}

void refuseLoneLog(const QString &path) {
    const QString log = path + QStringLiteral("-wal");
    // The database comes before its log: one that is there by now was made by another program.
    if (QFileInfo(log).size() == 0 || QFileInfo::exists(path))
        return;
    throw Failure(failures::unspecified,
                  QStringLiteral("The database %1 is missing, but the log of its last changes is still there: %2. Put "
                                 "the database, or a backup of it, back; or move the log away to begin with a new one.")
                      .arg(path, log));
}

} // namespace storage

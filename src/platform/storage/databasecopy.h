/// Copies of database files that others read and write, and the check of such a copy.
///
/// Failures: `noDiskSpace` where the copy's disk is full, `unspecified` where a file is damaged or stays locked, and
/// what `durable.h` says. The sentence names the file.
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

struct sqlite3;

namespace storage {

/// The number of rows of each table.
using Counts = QMap<QString, qint64>;

/// Told again and again while a copy is made: bytes of all bytes.
using Progress = std::function<void(qint64 done, qint64 all)>;

/// Database files as they stood at one moment. Who writes to them goes on, and isn't waited for any longer than it
/// takes to fix the moment. The moment is the same for all files: what moves from one to another is in one of them.
class Moment {
  public:
    /// \param files  files that are there. \param wait  for the writers, where there are several files.
    explicit Moment(const QStringList &files, std::chrono::milliseconds wait = std::chrono::seconds(10));
    ~Moment();
    Moment(const Moment &) = delete;
    Moment &operator=(const Moment &) = delete;

    /// Writes one of the files as it was then into `target`, an empty file, and reads it all again: fails where that is
    /// not the same. Gives what is in it.
    Counts copy(qsizetype at, const QString &target, const Progress &progress = {}) const;

  private:
    struct Closer {
        void operator()(sqlite3 *database) const;
    };
    using Database = std::unique_ptr<sqlite3, Closer>;

    [[nodiscard]] static Database open(const QString &file, std::chrono::milliseconds wait);

    QStringList m_files;
    std::vector<Database> m_databases;
};

/// Reads all of a database file that nobody has open. Nothing is left beside it, and it may be read-only. Fails with
/// `unspecified` where anything in it contradicts anything else.
Counts checkDatabase(const QString &path);

} // namespace storage

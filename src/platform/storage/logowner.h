/// Tells whether a database's log (WAL) was begun on the file that it lies beside.
///
/// After a kill the log stays, and the engine plays it into whatever file has the database's name by then; into an
/// older copy it writes pages that don't fit. The engine's format names no owner, so each log gets a mark: page 1 says
/// by `application_id` in which log it was marked last (the log's second salt), and by `user_version` which mark stood
/// there before. Do not change: part of the format on disk. The file itself can only have the mark that was in force
/// when its log began, or that of the log.
#pragma once

#include <QString>

struct sqlite3;

namespace storage {

/// Marks the log that the connection writes, unless that is done. Call it after a commit, outside of a transaction; a
/// mark that can't be written at once is left to the next call.
/// \param known  of the caller's connection: 0 at first.
void markLog(sqlite3 *database, quint32 &known);

/// Fails where the log beside a database is certain to belong to another file; nothing is touched. To be called before
/// the database is opened. A log that bears no mark is taken for the file's own.
void refuseForeignLog(const QString &path);
/// As above, told by the result.
bool hasForeignLog(const QString &path);

/// Fails where a log is left of a database that is not there.
void refuseLoneLog(const QString &path);

} // namespace storage

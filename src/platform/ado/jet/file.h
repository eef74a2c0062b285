/// The embedded engine: a SQLite file that holds what the engine's column types promise.
///
/// The format on disk, which plain SQLite tools can read and write:
/// - declared types VARCHAR(255), LONGTEXT, SMALLINT, INTEGER, CURRENCY, DATETIME, BOOLEAN, DOUBLE;
/// - money as a whole number of ten-thousandths, dates as days since 30 December 1899, true as -1;
/// - a column that numbers itself is INTEGER PRIMARY KEY AUTOINCREMENT;
/// - captions in the table `jet_properties` (written by `platform/dao`).
/// A file with that table was made here and keeps a log beside it (WAL); any other stays in the mode it has.
/// Its `application_id` and `user_version` tell the log that belongs to it (`platform/storage/logowner.h`).
///
/// Look-ups by one column keep an index of their own, named "lookup" with the table's and the column's names. The
/// schema promises only the primary keys; these come with the first look-up and may be dropped at any time.
#pragma once

#include "platform/ado/provider.h"

namespace ado {

/// Opens a database file. The path's separators may be of either kind. Fails with `failures::unspecified` when it is
/// missing, damaged or no database, or where a log
/// lies beside it that belongs to another file.
///
/// \param busySeconds  how long a statement waits for another program's write.
std::shared_ptr<Provider> openJetFile(const QString &path, int busySeconds);

/// Gives a database file another name, with all that was committed to it. Fails with 70 when another program has it
/// open, with 53 when it is not there and with 58 when the new name is taken.
void moveJetFile(const QString &from, const QString &to);

/// Deletes a database file that nobody has open, with all that the engine keeps beside it. None there is none deleted.
void removeJetFile(const QString &path);

/// The path as this machine has it: both separators turned into its own.
QString machinePath(const QString &path);

} // namespace ado

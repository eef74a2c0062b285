/// The ticket database: which one the installation uses, the one connection to it, and the recordsets and commands that
/// all reading and writing goes through.
///
/// The choice rests on two files of the data folder alone: the database file if it is there, else `DBConnection.txt`,
/// whose presence says that a database server is used and whose whole content is the connection string.
#pragma once

#include "platform/ado/command.h"
#include "platform/ado/recordset.h"
#include "platform/value/processlocal.h"

#include <optional>

/// What kind of database the run uses. The settings object is one.
struct ReportTarget {
    /// 0 until the database has been looked for, 2 a database file, 3 a database server.
    qint32 ReportTo = 0;
    /// With 2 the full path of the file, with 3 the connection string.
    QString ReportToValue;
};

/// The settings object of the run, once there is one. A run that needs the database earlier gets one of its own.
extern ProcessLocal<Ref<ReportTarget>> reportTarget;

/// The shared connection; Nothing means closed or not yet opened.
extern ProcessLocal<Ref<ado::Connection>> adoConnection;

/// Finds the database, or creates it where the person may be asked (`blnAllowDBCreation`), sets `ReportTo` and
/// `ReportToValue`, and gives its connection string; empty if there is none.
QString fncGetConnection();

/// The connection string of a database file.
QString fncFileConnection(const QString &strAccessPath);

/// Finds the database of the program folder, for a program that has no start of its own; its connection string, empty
/// if there is none.
QString fncFindInstalledDatabase();

/// The database file of the program folder as the machine names it, whether it is there or not; nothing where the
/// database is on a server.
std::optional<QString> fncInstalledFile();

/// Opens the shared connection unless it is there. No database is no failure: the connection stays Nothing.
void subSetupConnection();

/// Closes and releases the shared connection, whatever happens. The next recordset opens it again.
void subCloseConnection();

/// A recordset on the shared connection.
///
/// \param strSource  a SELECT or a table's name.
/// \param blnReadOnly  false for optimistic locks, true for a recordset that takes no changes.
/// \param blnDisplayError  whether a failure goes to the error report, which ends the process; if not, the result is
///        Nothing.
/// Nothing, too, when there is no database.
Ref<ado::Recordset> fncReturnRecordset(const QString &strSource, bool blnReadOnly, bool blnDisplayError, bool blnBatch);

/// A recordset on a connection of the caller's. It fails as the recordset does.
Ref<ado::Recordset> fncOpenRecordset(const Ref<ado::Connection> &connection, const QString &strSource,
                                     ado::LockType lockType);

/// A text command on the shared connection; Nothing when there is no database.
Ref<ado::Command> fncCreateCommand();

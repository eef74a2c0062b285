/// Creation of the ticket database: its eight tables, column by column, and the captions of the columns in the language
/// in force.
#pragma once

#include "platform/ado/connection.h"
#include "platform/dao/dao.h"

#include <functional>

/// Creates the database file. True when all three steps below went well; the file is complete then, and not there at
/// all otherwise.
bool fncCreateAccessDB(const QString &strPath);

/// The steps: the file with the first three tables, which stays open; the later columns of `tblTickets`; the other five
/// tables. The last two go on after a step that fails, and are false then.
Ref<dao::Database> fncCreateV7DB(const QString &strPath);
bool fncAddTicketColumns(const Ref<dao::Database> &objDatabase);
bool fncAddReferenceTables(const Ref<dao::Database> &objDatabase);

/// Creates a database file together with its first rows. It gets its name when it is whole, so that nobody works on
/// half of it; where another program was first, the database of that name is that one's.
///
/// \param strPath  where it is to be; the rows are written to a file beside it.
/// \param subFill  writes the rows, on a connection of its own.
void subCreateFilledDB(const QString &strPath, const std::function<void(const Ref<ado::Connection> &)> &subFill);

/// Adds a table with its autonumber column and its primary key. An empty caption gives the column none.
Ref<dao::TableDef> fncDAOAddTable(const Ref<dao::Database> &objDatabase, const QString &strTableName,
                                  const QString &strIDField, const QString &strCaption);
/// Adds a column. The size counts for text columns only, which take empty texts; no other column does.
void subDAOAddField(const Ref<dao::TableDef> &objTableDef, const QString &strName, const QString &strCaption,
                    qint16 intType, qint16 intSize);
void subAddOtherSettingsTable(const Ref<dao::Database> &objDatabase);
/// Deletes the relations whose foreign table is the named one, from the last to the first.
void subDAORemoveForeignKeys(const Ref<dao::Database> &objDatabase, const QString &strTable);

/// Creates the database on a server and gives its connection string; empty when it was not created. Servers are not
/// supported yet: it says so and gives an empty text.
QString fncCreateSQLDB(const QString &strDefaultDBName);

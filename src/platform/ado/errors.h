/// The failure numbers of data access. `failures::unspecified` (0x80004005) stands for a write that was refused: the
/// row was changed by somebody else, the database is busy, read-only or full.
#pragma once

#include "platform/value/failure.h"

namespace ado {

constexpr qint32 invalidArgument = failures::automation(0x800A0BB9);     ///< a criterion or argument that can't be read
constexpr qint32 noCurrentRecord = failures::automation(0x800A0BCD);     ///< before the first or after the last row
constexpr qint32 notAllowed = failures::automation(0x800A0C93);          ///< not in this context
constexpr qint32 notUpdatable = failures::automation(0x800A0CB3);        ///< the recordset does not take changes
constexpr qint32 itemNotFound = failures::automation(0x800A0CC1);        ///< no field of that name or ordinal
constexpr qint32 objectClosed = failures::automation(0x800A0E78);        ///< the connection or recordset is closed
constexpr qint32 alreadyOpen = failures::automation(0x800A0E79);         ///< the connection or recordset is open
constexpr qint32 providerNotFound = failures::automation(0x800A0E7A);    ///< no provider of that name here
constexpr qint32 statementFailed = failures::automation(0x80040E14);     ///< the SQL text was refused
constexpr qint32 constraintFailed = failures::automation(0x80040E2F);    ///< the value breaks a rule of the column
constexpr qint32 badConnectionString = failures::automation(0x80040E73); ///< the connection string can't be read

} // namespace ado

/// Custom properties of an item: typed values, and texts too long for one property.
#pragma once

#include "orvelle/core/valuetype.h"
#include "orvelle/host/items.h"
#include "platform/value/value.h"

#include <QString>

/// Writes one property, which is made when it is missing. A value that is no number counts as 0; one that is no date
/// leaves a date as it was; another type writes nothing. Does nothing to Nothing.
void subSetOutlookValue(const host::Item &ouiItem, const QString &PropName, const Value &value, qint32 intDataType);

/// Reads one property. Never fails: what can't be read is the default (0 for a number that is none, the zero date for
/// any date, Empty for a boolean without a default). An empty text counts as missing.
Value fncGetOutlookValue(const host::Item &ouiItem, const QString &PropName, qint32 intDataType,
                         const Value &varDefault = {});

/// Writes a text in pieces of at most 1000 characters: `PropName` with 0, 1 and so on behind it, and the highest of
/// these numbers in `PropName` with "Count" behind it. That number is the length in thousands, a half going to the even
/// neighbour, so that the last piece may be empty. Pieces of an earlier, longer text stay and are not read.
///
/// A failure stops the writing; the person is told of it unless `blnSilent`.
void subFixLongProperty(const host::Item &ouiItem, const QString &strText, const QString &PropName, bool blnSilent);

/// Reads such a text; a missing count reads the first piece alone.
QString fncGetLongProperty(const host::Item &ouiItem, const QString &PropName);
/// The same where the count and the first piece were read with other properties (see `fncLongPropertyStart`).
QString fncGetLongProperty(const host::Item &ouiItem, const host::Item &seen, const QString &PropName);
/// The names of the count and of the first piece.
QStringList fncLongPropertyStart(const QString &PropName);

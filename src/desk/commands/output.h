/// What commands write.
#pragma once

#include "platform/value/value.h"

#include <QJsonObject>
#include <QJsonValue>

namespace desk {

struct Property;

/// Writes to standard output in UTF-8. Control characters other than tabs and line ends, which mails may bring, are
/// replaced, so that none reaches the terminal. Fails with 70 where it can't be written.
void print(const QString &text);
void printLine(const QString &text);
/// The one document of --json.
void printJson(const QJsonValue &document);
/// Rows as columns of equal width; a long cell is cut. On a row's last column nothing is cut.
void printTable(const QStringList &header, const QList<QStringList> &rows);

/// For people: dates as "2026-11-22 09:30", true and false as yes and no; no line ends.
QString plainText(const Value &value);
/// Dates as ISO text (null for no date), numbers as numbers, Empty as null.
QJsonValue jsonOf(const Value &value);
/// "name", "type" (text, number, date, yesno) and "value".
QJsonObject jsonOf(const Property &property);

} // namespace desk

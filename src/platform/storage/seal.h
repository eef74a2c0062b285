/// The check sums of a backup: a text file that sha256sum -c reads as well.
#pragma once

#include "platform/storage/databasecopy.h"

#include <QByteArray>
#include <QMap>
#include <QString>

namespace storage {

/// Names, relative to the file of the sums, with their sums as hexadecimal texts.
using Sums = QMap<QString, QByteArray>;

/// The sum of a file, read to its end.
QByteArray sumOf(const QString &path);

/// Copies a file into another one that is there and empty, and gives the sum of what was written.
QByteArray copyWithSum(const QString &from, const QString &to, const Progress &progress = {});

/// \param title  stands in the first line, which tells what the sums are of.
QByteArray writtenSums(const QString &title, const Sums &sums);

/// Fails with `unspecified` for a text that has not this title, is cut off, or names a file outside its folder.
Sums readSums(const QByteArray &text, const QString &title, const QString &path);

} // namespace storage

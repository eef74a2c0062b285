/// Backups of the ticket database: one file, and its check sum beside it in "FILE.sha256", which sha256sum -c reads.
#pragma once

#include <QString>
#include <QStringList>

namespace settings {

/// Copies the database as it stands at one moment, also while programs work with it, and reads the copy again. Gives
/// what there is to tell, line by line. Fails with 58 where the file is there, unless it is to be replaced.
QStringList backUp(const QString &file, bool replace);

/// Puts such a copy in the place of the database, once it is found whole. Fails with 70 where a program has the
/// database open. What stood there is kept under another name, which is told.
QStringList restore(const QString &file);

} // namespace settings

/// The database of an older installation: brought under the present file name.
#pragma once

#include <QString>

/// Sets `strDBFileName`. A file under the old name is renamed; where that can't be done now (another program has it
/// open) the old name is used for this run, and the next start tries again.
void subFindDatabaseFile();

/// The path of the database file in a folder that is given with a backslash at its end. Another program's start may
/// rename the older file in the midst of this run: `strDBFileName` follows it, since a file that is not there is made
/// anew.
QString fncDatabaseFile(const QString &strFolder);

/// Steps with files whose effect outlives a power failure, and that a kill can't leave half done.
///
/// Failures of all of them: `noDiskSpace`, `accessDenied`, `fileExists`, `pathNotFound`, or `unspecified` for what the
/// machine says otherwise. The sentence names the file, and ends with the machine's own words.
#pragma once

#include "platform/value/failure.h"

#include <QString>

namespace storage {

/// The failure for an error number of the machine. \param doing  such as "can't be written".
Failure fileFailure(int error, const QString &path, const QString &doing);

/// Brings a file's content to the disk.
void syncFile(const QString &path);
/// Brings the names in a folder to the disk, where the file system can promise it.
void syncFolder(const QString &folder);

/// Gives a file or folder another name in the same file system. Fails with `fileExists` where the name is taken; an
/// empty folder takes no name.
void renameNew(const QString &from, const QString &to);
/// As `renameNew`; what has the name makes room in the same step. For files.
void renameOver(const QString &from, const QString &to);
/// Two folders take each other's name.
void exchangeNames(const QString &one, const QString &other);

} // namespace storage

/// Text files, the temp folder and the parts of paths.
#pragma once

#include "platform/scripting/filesystem.h"
#include "platform/value/ref.h"

#include <QString>

/// Writes a text without its double quotes into a file, and gives the name that it was written under.
///
/// \param strFile  the file; with `blnRetry` or when empty, a name in the temp folder. Changed to the name used.
/// \param blnRetry  takes another name when the file is there and can't be deleted.
QString fncSaveTextFile(QString &strFile, const QString &strText, bool blnRetry);

/// The temp folder with long names.
QString fncGetTempPath();
/// Without one final "/" or "\".
QString fncNoTrailingSlash(const QString &strPath);
/// Up to and including the last "\". Fails with 5 where there is none.
QString fncFolderPart(const QString &strPath);
/// The folder's full path with long names.
QString fncLongFolderPath(const Ref<scripting::Folder> &folder);

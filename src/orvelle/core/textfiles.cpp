// Text files and paths.

#include "orvelle/core/textfiles.h"

#include "orvelle/core/components.h"
#include "orvelle/core/errorhandler.h"
#include "orvelle/core/trace.h"
#include "platform/scripting/filesystem.h"

namespace {

ProcessLocal<QString> strTempFolder;

/// The temp folder, asked for once in a process.
QString fncCachedTempPath() {
    if (strTempFolder.get().isEmpty())
        strTempFolder = fncGetTempPath();
    return strTempFolder;
}

QString fncNewTempName() { return fsoFileSystem->GetTempName().replace(".tmp", ".ndf"); }

/// Deletes the file or, on the way of a retry, takes the first name that is free or can be freed: the count goes in
/// front of the extension, and each further one in front of it again.
void subMakeRoom(QString &strFile, bool blnRetry) {
    const auto subDelete = [&] { fsoFileSystem->DeleteFile(strFile, true); };
    const std::optional<Failure> failure = Attempt(subDelete);
    if (!failure)
        return;
    if (!blnRetry)
        throw Failure(*failure);
    constexpr qsizetype lngExtension = 4;
    for (qint32 intCounter = 1; fsoFileSystem->FileExists(strFile); ++intCounter) {
        strFile.insert(std::max<qsizetype>(strFile.size() - lngExtension, 0), QString::number(intCounter));
        Attempt(subDelete);
    }
}

} // namespace

QString fncSaveTextFile(QString &strFile, const QString &strText, bool blnRetry) try {
    subSetupFS();
    if (blnRetry || strFile.isEmpty())
        strFile = fncNoTrailingSlash(fncCachedTempPath()) + "\\" + (strFile.isEmpty() ? fncNewTempName() : strFile);
    subTrace("Checking for previoius existance of " + strFile);
    if (fsoFileSystem->FileExists(strFile))
        subMakeRoom(strFile, blnRetry);
    subTrace("Saving textfile " + strFile);
    const Ref<scripting::TextStream> stream = fsoFileSystem->CreateTextFile(strFile, true, false);
    stream->Write(QString(strText).remove(u'"'));
    stream->Close();
    return strFile;
} catch (const Failure &failure) {
    subErrorHandler(failure, "fncSaveTextFile");
}

QString fncGetTempPath() {
    subTrace("Finding Temp folder path");
    subSetupFS();
    constexpr qint32 intTemporaryFolder = 2;
    return fncLongFolderPath(fsoFileSystem->GetSpecialFolder(intTemporaryFolder));
}

QString fncNoTrailingSlash(const QString &strPath) {
    return strPath.endsWith(u'\\') || strPath.endsWith(u'/') ? strPath.chopped(1) : strPath;
}

QString fncFolderPart(const QString &strPath) {
    const qsizetype lngEnd = strPath.lastIndexOf(u'\\');
    if (lngEnd < 0)
        throw Failure(failures::invalidCall, QStringLiteral("The path %1 names no folder.").arg(strPath));
    return strPath.left(lngEnd + 1);
}

QString fncLongFolderPath(const Ref<scripting::Folder> &folder) {
    if (folder->IsRootFolder() || folder->ShortName() != folder->Name())
        return folder->Path();
    const Ref<scripting::Folder> parent = folder->ParentFolder();
    QString strName = folder->Name();
    // A parent that may not be listed has no more to say about the name.
    Attempt([&] {
        for (const Ref<scripting::Folder> &sub : parent->SubFolders()) {
            if (sub->ShortName() == folder->ShortName()) {
                strName = sub->Name();
                return;
            }
        }
    });
    return fncNoTrailingSlash(fncLongFolderPath(parent)) + "\\" + strName;
}

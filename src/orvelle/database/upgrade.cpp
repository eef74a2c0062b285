#include "orvelle/database/upgrade.h"

#include "orvelle/core/components.h"
#include "orvelle/core/process.h"
#include "orvelle/core/textfiles.h"
#include "platform/ado/jet/file.h"

namespace {
constexpr char strName[] = "Orvelle.mdb";
constexpr char strOlderName[] = "Corvane.mdb";
} // namespace

void subFindDatabaseFile() {
    subSetupFS();
    const QString strFolder = fncNoTrailingSlash(fncProgramFolder()) + "\\";
    strDBFileName = QString(strName);
    if (fsoFileSystem->FileExists(strFolder + strName) || !fsoFileSystem->FileExists(strFolder + strOlderName))
        return;
    // Another program that has the file open keeps its name.
    if (Attempt([&] { ado::moveJetFile(strFolder + strOlderName, strFolder + strName); }))
        strDBFileName = QString(strOlderName);
}

QString fncDatabaseFile(const QString &strFolder) {
    if (*strDBFileName == strOlderName && !fsoFileSystem->FileExists(strFolder + strOlderName) &&
        fsoFileSystem->FileExists(strFolder + strName))
        strDBFileName = QString(strName);
    return strFolder + *strDBFileName;
}

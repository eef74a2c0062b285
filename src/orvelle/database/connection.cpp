#include "orvelle/database/connection.h"

#include "orvelle/core/components.h"
#include "orvelle/core/errorhandler.h"
#include "orvelle/core/process.h"
#include "orvelle/core/textfiles.h"
#include "orvelle/core/trace.h"
#include "orvelle/database/chooseconnection.h"
#include "orvelle/database/creation.h"
#include "orvelle/database/upgrade.h"
#include "platform/ado/connectionstring.h"
#include "platform/scripting/filesystem.h"
#include "platform/scripting/path.h"
#include "platform/storage/logowner.h"

ProcessLocal<Ref<ReportTarget>> reportTarget;
ProcessLocal<Ref<ado::Connection>> adoConnection;

namespace {

constexpr qint32 jetFile = 2;
constexpr qint32 databaseServer = 3;
constexpr char strScriptFile[] = "ORVLDB.sql";
constexpr char strConnectionFileName[] = "DBConnection.txt";
constexpr char strServerDatabase[] = "OrvelleSQL";

constexpr qint32 forReading = 1;
constexpr qint32 forWriting = 2;
constexpr qint32 systemCodePage = -2;

ReportTarget &fncTarget() {
    if (!reportTarget.get())
        reportTarget = Ref<ReportTarget>::make();
    return *reportTarget.get();
}

QString fncUseFile(const QString &strAccessPath) {
    fncTarget().ReportTo = jetFile;
    fncTarget().ReportToValue = strAccessPath;
    return fncFileConnection(strAccessPath);
}

QString fncUseServer(const QString &strConnection) {
    fncTarget().ReportTo = databaseServer;
    fncTarget().ReportToValue = strConnection;
    return strConnection;
}

/// The text of `DBConnection.txt`; nothing when the file is empty.
std::optional<QString> fncReadConnection(const QString &strFile) {
    const Ref<scripting::TextStream> stream = fsoFileSystem->OpenTextFile(strFile, forReading, false, systemCodePage);
    if (stream->AtEndOfStream())
        return std::nullopt;
    return stream->ReadAll();
}

QString fncStoreConnection(const QString &strFile, const QString &strConnection) {
    const Ref<scripting::TextStream> stream = fsoFileSystem->OpenTextFile(strFile, forWriting, true, systemCodePage);
    stream->Write(strConnection);
    stream->Close();
    return fncUseServer(strConnection);
}

/// What the person chose on a first start.
QString fncChooseConnection(const QString &strAccessPath, const QString &strConnectionFile) {
    ChooseConnectionForm &form = frmChooseConnection.get();
    form.strSQLScriptFileName = strScriptFile;
    form.ShowModal();
    switch (form.intConnectionOption) {
    case 1:
        fncCreateAccessDB(strAccessPath);
        return fncUseFile(strAccessPath);
    case 2:
        return fncStoreConnection(strConnectionFile, fncCreateSQLDB(strServerDatabase));
    default:
        return {};
    }
}

} // namespace

QString fncFileConnection(const QString &strAccessPath) {
    return "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + ado::quotedConnectionValue(strAccessPath);
}

QString fncFindInstalledDatabase() {
    subFindDatabaseFile();
    strDBPath = fncProgramFolder();
    return fncGetConnection();
}

std::optional<QString> fncInstalledFile() {
    subFindDatabaseFile();
    const QString strFolder = fncNoTrailingSlash(fncProgramFolder()) + "\\";
    const QString strFile = fncDatabaseFile(strFolder);
    if (!fsoFileSystem->FileExists(strFile) && fsoFileSystem->FileExists(strFolder + strConnectionFileName))
        return std::nullopt;
    return scripting::nativePath(strFile);
}

QString fncGetConnection() try {
    subTrace("Checking if database .mdb file exists");
    subSetupFS();
    for (;;) {
        if (strDBPath->isEmpty())
            strDBPath = fncProgramFolder();
        strDBPath = fncNoTrailingSlash(*strDBPath);
        const QString strAccessPath = fncDatabaseFile(strDBPath->trimmed() + "\\");
        subTrace("strAccessPath = " + strAccessPath);
        if (fsoFileSystem->FileExists(strAccessPath))
            return fncUseFile(strAccessPath);
        const QString strConnectionFile = *strDBPath + "\\" + strConnectionFileName;
        if (fsoFileSystem->FileExists(strConnectionFile)) {
            if (const std::optional<QString> strConnection = fncReadConnection(strConnectionFile))
                return fncUseServer(*strConnection);
            // An empty file means that nothing is set up.
            fsoFileSystem->DeleteFile(strConnectionFile, true);
            continue;
        }
        storage::refuseLoneLog(scripting::nativePath(strAccessPath));
        if (!*blnAllowDBCreation)
            return {};
        return fncChooseConnection(strAccessPath, strConnectionFile);
    }
} catch (const Failure &failure) {
    subErrorHandler(failure, "fncGetConnection");
}

void subSetupConnection() try {
    subTrace("Checking if the ADO connection is up or not");
    if (adoConnection.get())
        return;
    QString strConnection;
    if (fncTarget().ReportTo == databaseServer) {
        if (!fncTarget().ReportToValue.startsWith("Pro"))
            fncGetConnection();
        strConnection = fncTarget().ReportToValue;
    } else {
        strConnection = fncGetConnection();
    }
    if (strConnection.isEmpty())
        return;
    subTrace("Trying to open a connection to the database with the connection string " + strConnection);
    const auto connection = Ref<ado::Connection>::make();
    connection->SetConnectionString(strConnection);
    connection->Open();
    adoConnection = connection;
} catch (const Failure &failure) {
    subErrorHandler(failure, "subSetupConnection");
}

void subCloseConnection() {
    if (adoConnection.get())
        Attempt([] { adoConnection->Close(); });
    adoConnection = Ref<ado::Connection>();
}

Ref<ado::Recordset> fncReturnRecordset(const QString &strSource, bool blnReadOnly, bool blnDisplayError,
                                       bool blnBatch) try {
    subSetupConnection();
    subTrace("Creating a new ADOB.Recordset. If this fails, please try re-installing MDAC");
    const auto adrRS = Ref<ado::Recordset>::make();
    subTrace("Attempting to open a recordset from " + strSource);
    if (!adoConnection.get())
        return nullptr;
    adrRS->SetActiveConnection(adoConnection.get());
    adrRS->SetSource(strSource);
    adrRS->SetCursorLocation(ado::CursorLocation::Client);
    adrRS->SetLockType(blnReadOnly ? ado::LockType::ReadOnly
                       : blnBatch  ? ado::LockType::BatchOptimistic
                                   : ado::LockType::Optimistic);
    adrRS->SetCursorType(blnReadOnly ? ado::CursorType::Static : ado::CursorType::Dynamic);
    adrRS->Open();
    return adrRS;
} catch (const Failure &failure) {
    if (blnDisplayError)
        subErrorHandler(failure, "fncReturnRecordset");
    return nullptr;
}

Ref<ado::Recordset> fncOpenRecordset(const Ref<ado::Connection> &connection, const QString &strSource,
                                     ado::LockType lockType) {
    const auto adrRS = Ref<ado::Recordset>::make();
    adrRS->SetActiveConnection(connection);
    adrRS->SetSource(strSource);
    adrRS->SetLockType(lockType);
    adrRS->Open();
    return adrRS;
}

Ref<ado::Command> fncCreateCommand() try {
    subTrace("Creating a new ADODB.Command object");
    subSetupConnection();
    if (!adoConnection.get())
        return nullptr;
    const auto command = Ref<ado::Command>::make();
    command->SetActiveConnection(adoConnection.get());
    command->SetCommandType(ado::CommandType::Text);
    return command;
} catch (const Failure &failure) {
    subErrorHandler(failure, "fncCreateCommand");
}

#include "orvelle/core/starting.h"

#include "orvelle/core/components.h"
#include "orvelle/core/errorhandler.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/textfiles.h"
#include "orvelle/core/trace.h"
#include "platform/window/window.h"

namespace {

void subShowExecuteFailure(const QString &strFile, const QString &strReason) {
    window::msgBox(LNGERROREXECUTE + " " + strFile + strLineEnd + strReason, window::Buttons::OK,
                   window::Icon::Critical, strProgramTitle);
}

/// The companion program's file: in the folder asked for if it is there, else in the program folder.
QString fncCompanion(const QString &strFile, const QString &strPath) {
    const QString strName = "\\" + strFile + ".exe";
    QString strAsked = fncNoTrailingSlash(strPath) + strName;
    subSetupFS();
    if (!strPath.isEmpty() && fsoFileSystem->FileExists(strAsked))
        return strAsked;
    return fncNoTrailingSlash(fncProgramFolder()) + strName;
}

} // namespace

void subExecute(const QString &strFile, const QString &strArguments, const QString &strPath) try {
    subTrace("Attempting to execute " + strFile + " " + strArguments + " " + strPath);
    const Ref<scripting::Shell> objShell = fncGetShell();
    const QString strScheme = strFile.left(4).toUpper();
    if (strScheme == "HTTP" || strScheme == "MAIL") {
        objShell->Run(strFile);
        return;
    }
    const QString strProgram = fncCompanion(strFile, strPath);
    subTrace("Attempting to execute the path '" + strProgram + "'");
    if (!fsoFileSystem->FileExists(strProgram)) {
        subShowExecuteFailure(strProgram, Failure::standardDescription(failures::fileNotFound));
        return;
    }
    if (const auto failure = Attempt([&] { objShell->Run("\"" + strProgram + "\" " + strArguments, 1); }))
        subShowExecuteFailure(strProgram, failure->description());
} catch (const Failure &failure) {
    subErrorHandler(failure, "modFileHandling.subExecute");
}

void subInvokeShellVerb(const QString &strFolder, const QString &strFile, const QString &strVerb) {
    subTrace("Trying to execute " + strFile);
    const Ref<scripting::ShellFolder> folder = scripting::ShellApplication().NameSpace(strFolder);
    if (folder.isNothing())
        return;
    if (const Ref<scripting::FolderItem> item = folder->Items().Item(strFile))
        item->InvokeVerb(strVerb);
}

void subPrintFile(const QString &strPath) {
    subTrace("Attempting to print the file " + strPath);
    subSetupFS();
    const Ref<scripting::File> file = fsoFileSystem->GetFile(strPath);
    subInvokeShellVerb(file->ParentFolder()->Path() + "\\", file->Name(), "Print");
}

void subOpenURL(const QString &strURL) {
    Attempt([&] { scripting::Shell().Run(strURL, 1); });
}

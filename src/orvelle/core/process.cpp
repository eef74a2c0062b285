#include "orvelle/core/process.h"

#include "platform/scripting/path.h"
#include "platform/value/failure.h"

#include <QCoreApplication>

ProcessLocal<host::Application> ouaOutlook;
ProcessLocal<host::NameSpace> onsMAPI;
ProcessLocal<host::MAPIFolder> oufTickets;
ProcessLocal<QString> strCurrentUserName;
ProcessLocal<bool> blnFormOpening;
ProcessLocal<bool> blnAllowDBCreation;
ProcessLocal<QString> strDBFileName;
ProcessLocal<QString> strDBPath;
ProcessLocal<QString> strProgramFolderOverride;
ProcessLocal<ProcessHooks> processHooks;

namespace {
ProcessLocal<bool> blnEnding;
} // namespace

QString fncProgramFolder() {
    if (!strProgramFolderOverride.get().isEmpty())
        return strProgramFolderOverride;
    const QString strHome = qEnvironmentVariable("ORVELLE_HOME");
    QString strFolder = scripting::pathText(strHome.isEmpty() ? QCoreApplication::applicationDirPath() : strHome);
    while (strFolder.endsWith(u'\\'))
        strFolder.chop(1);
    return strFolder;
}

bool fncIsEnding() { return blnEnding; }

void subQuit() { subReleaseAll(); }

void subReleaseOnce() {
    if (blnEnding)
        return;
    blnEnding = true;
    if (const auto subRelease = processHooks->subReleaseAll)
        Attempt(subRelease);
}

void subReleaseAll() {
    if (runSteps->intDepth > 0)
        subAskEnd();
    else
        subReleaseOnce();
    throw ProcessEnd{};
}

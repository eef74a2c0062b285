#include "orvelle/session/session.h"

#include "orvelle/core/components.h"
#include "orvelle/core/errorhandler.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/dialogs/dialogs.h"
#include "orvelle/session/forms.h"
#include "platform/scripting/components.h"
#include "platform/scripting/shell.h"
#include "platform/window/window.h"

ProcessLocal<std::function<automation::ObjectPtr()>> runningHost;

namespace {
/// The oldest version that offers what is asked of it.
constexpr qint16 oldestVersion = 9;

/// 0 until asked for.
ProcessLocal<qint16> majorVersion;

host::Application fncFindHost() {
    host::Application oua;
    if (runningHost.get())
        Attempt([&] { oua = host::Application(runningHost.get()()); });
    // The host's own component, whatever its version; then the versions from the youngest, and once more the first.
    for (const char *progId : {"Outlook.Application", "Outlook.Application.12", "Outlook.Application.11",
                               "Outlook.Application.10", "Outlook.Application.9", "Outlook.Application"}) {
        if (oua)
            break;
        Attempt([&] { oua = host::Application(scripting::CreateObject(progId)); });
    }
    return oua;
}

void subShowSomeExplorer(qint32 intFolderType) {
    if (AttemptOr([] { return !ouaOutlook->ActiveExplorer().isNothing(); }, false))
        return;
    Attempt([&] {
        if (ouaOutlook->Explorers().Count() == 0)
            static_cast<void>(ouaOutlook->Explorers().Add(onsMAPI->GetDefaultFolder(intFolderType), 0));
    });
    Attempt([] { ouaOutlook->Explorers().Item(1).Activate(); });
}
} // namespace

void subStartOutlook(qint32 intFolderType) {
    if (ouaOutlook.get())
        return;
    subTrace("Attempting to start MS Outlook 2000 or later");
    ouaOutlook = fncFindHost();
    if (ouaOutlook->isNothing()) {
        window::msgBox("Please start Outlook manually before you execute this application!", window::Buttons::OK,
                       window::Icon::None, strProgramTitle);
        subQuit();
    }
    if (fncOutlookVersion() >= oldestVersion) {
        Attempt([] { onsMAPI = ouaOutlook->GetNamespace("MAPI"); });
    } else {
        window::msgBox(LNGO2KNEEDED + strLineEnd + AttemptOr([] { return ouaOutlook->Version(); }, QString()),
                       window::Buttons::OK, window::Icon::Critical, strProgramTitle);
        subQuit();
    }
    subShowSomeExplorer(intFolderType);
}

void subSetCurrentFolder(qint32 intFolderType) {
    subStartOutlook(host::defaultfolder::inbox);
    const bool blnHasFolder = AttemptOr(
        [] { return ouaOutlook->Explorers().Count() > 0 && ouaOutlook->ActiveExplorer().CurrentFolder(); }, false);
    std::optional<Failure> failure;
    if (!blnHasFolder) {
        failure = Attempt([&] {
            const host::MAPIFolder ouf = onsMAPI->GetDefaultFolder(intFolderType);
            ouaOutlook->Explorers().Add(ouf, 0).Display();
        });
    }
    const auto second = Attempt([] { oufTickets = ouaOutlook->ActiveExplorer().CurrentFolder(); });
    if (failure || second)
        subAssistantMessage(ouaOutlook, "Unable to connect to current Outlook folder!");
}

qint16 fncOutlookVersion() {
    if (majorVersion == 0) {
        subStartOutlook(host::defaultfolder::inbox);
        majorVersion = AttemptOr([] { return toInt16(ouaOutlook->Version().section(QChar(u'.'), 0, 0)); }, qint16(0));
    }
    return majorVersion;
}

bool fncHasBodyFormat() {
    constexpr qint16 firstWithBodyFormat = 10;
    return fncOutlookVersion() >= firstWithBodyFormat;
}

void subGetSafeMailboxName() try {
    subTrace("Getting current user full name from mailbox name");
    subStartOutlook(host::defaultfolder::inbox);
    const QString strRoot = onsMAPI->GetDefaultFolder(host::defaultfolder::calendar).Parent().Name();
    const QString strSeparator = " - ";
    const qsizetype intAt = strRoot.indexOf(strSeparator);
    if (intAt >= 0)
        strCurrentUserName = strRoot.mid(intAt + strSeparator.size()).trimmed();
    else if (strRoot.contains(QChar(u',')))
        strCurrentUserName = strRoot;
} catch (const Failure &failure) {
    subErrorHandler(failure, "subGetSafeMailboxName");
}

QString fncGetUserName() {
    subGetSafeMailboxName();
    if (strCurrentUserName->isEmpty()) {
        Attempt([] { strCurrentUserName = fncGetShell()->ExpandEnvironmentStrings("%USERNAME%"); });
    }
    return strCurrentUserName;
}

QString fncFormsCacheMessage(const QString &strDescription) {
    return "Failed to create a new Outlook form!\r\n"
           "Most likely the forms cache has been corrupted!\r\n"
           "Please do the following:\r\n"
           "1.    Right click your inbox folder\r\n"
           "2.   Properties\r\n"
           "3.  Select the Forms tab\r\n"
           "4.    Manage\r\n"
           "5.  Clear Cache\r\n"
           "6. Restart Outlook\r\n"
           "\r\n"
           "I apologize for the trouble!\r\n"
           "\r\n" +
           strDescription;
}

void subRefreshCBHomepage() {
    if (oufTickets->isNothing())
        return;
    subTrace("Refreshing the homepage.");
    subStartOutlook(host::defaultfolder::inbox);
    Attempt([] { oufTickets->WebViewOn(true); });
    const host::MAPIFolder ouf = oufTickets;
    // The detour through the parent is what makes the host load the page again.
    Attempt([] { ouaOutlook->ActiveExplorer().CurrentFolder(oufTickets->Parent()); });
    Attempt([&] { ouaOutlook->ActiveExplorer().CurrentFolder(ouf); });
    oufTickets = ouf;
}

void subReleaseOutlook() {
    subUnloadForms();
    onsMAPI = host::NameSpace();
    oufTickets = host::MAPIFolder();
    ouaOutlook = host::Application();
}

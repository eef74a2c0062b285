#include "orvelle/ticketfolder/ticketfolder.h"

#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/dialogs/dialogs.h"
#include "orvelle/reference/settings.h"
#include "orvelle/session/folderpath.h"
#include "orvelle/session/outlookfolder.h"
#include "orvelle/session/session.h"
#include "platform/scripting/shell.h"

namespace {
QString fncRegistryText(const scripting::Shell &shell, const QString &strName, const QString &strOtherwise) {
    return AttemptOr([&] { return shell.RegRead("HKCU\\Software\\Tessmark\\Orvelle\\" + strName); }, strOtherwise);
}
} // namespace

void subReadFolderFromRegistry() {
    Attempt([] {
        const scripting::Shell shell;
        cFolderReference &folder = *objSettings->objFolder;
        folder.EntryID = fncRegistryText(shell, "Folder EntryID", folder.EntryID);
        folder.StoreID = fncRegistryText(shell, "Folder StoreID", folder.StoreID);
        folder.Path = fncRegistryText(shell, "Folder Path", folder.Path);
        folder.Name = fncRegistryText(shell, "Folder Name", folder.Name);
    });
}

host::MAPIFolder fncSavedFolder() { return cOutlookFolder(*objSettings->objFolder).GetFolder(); }

void subFindTicketFolder() {
    oufTickets = fncSavedFolder();
    if (oufTickets->isNothing()) {
        subReadFolderFromRegistry();
        oufTickets = fncSavedFolder();
    }
    if (oufTickets->isNothing())
        subSetCurrentFolder(host::defaultfolder::inbox);
    while (oufTickets->isNothing()) {
        if (fncAssistantYesNo(ouaOutlook, LNGFAILEDTOFINDCRVFOLDER, 4) != window::Yes)
            subReleaseAll();
        oufTickets = fncPickFolder(nullptr);
        if (oufTickets->isNothing())
            continue;
        objSettings->OtherSettings->SetValue("RootFolderPath", fncGetFolderPath(oufTickets, onsMAPI));
        objSettings->SaveSettings();
    }
}

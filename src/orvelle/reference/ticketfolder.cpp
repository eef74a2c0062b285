#include "orvelle/reference/ticketfolder.h"

#include "orvelle/reference/settings.h"
#include "orvelle/session/outlookfolder.h"
#include "platform/scripting/shell.h"

namespace {
QString registryText(const scripting::Shell &shell, const QString &strName, const QString &strOtherwise) {
    return AttemptOr([&] { return shell.RegRead("HKCU\\Software\\Tessmark\\Orvelle\\" + strName); }, strOtherwise);
}
} // namespace

void subReadFolderFromRegistry() {
    Attempt([] {
        const scripting::Shell shell;
        cOutlookFolder &folder = *objSettings->objFolder;
        folder.EntryID = registryText(shell, "Folder EntryID", folder.EntryID);
        folder.StoreID = registryText(shell, "Folder StoreID", folder.StoreID);
        folder.Path = registryText(shell, "Folder Path", folder.Path);
        folder.Name = registryText(shell, "Folder Name", folder.Name);
    });
}

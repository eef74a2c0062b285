#include "orvelle/core/components.h"

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "platform/launch/launcher.h"
#include "platform/scripting/components.h"
#include "platform/window/window.h"

ProcessLocal<Ref<scripting::FileSystemObject>> fsoFileSystem;

namespace {

constexpr char strScriptingComponent[] = "scrrun.dll";
constexpr char strShellComponent[] = "wshom.ocx";

/// Healing of a component is tried once in a process.
ProcessLocal<bool> blnFileSystemHealed;
ProcessLocal<bool> blnDictionaryHealed;

/// Registers a component's file with the system, without waiting.
void subRegister(const QString &strFile) {
    Attempt([&] { launch::currentLauncher().start("regsvr32", {strFile, "/s"}); });
}

[[noreturn]] void subCannotCreate(const QString &strName) {
    throw Failure(failures::cannotCreateObject,
                  QStringLiteral("%1: %2").arg(Failure::standardDescription(failures::cannotCreateObject), strName));
}

/// Whether the component is there, with one attempt to heal it.
bool fncComponentThere(const QString &strName, const QString &strFile, ProcessLocal<bool> &blnHealed) {
    if (!scripting::Components::isRemoved(strName))
        return true;
    if (blnHealed)
        return false;
    blnHealed = true;
    subRegister(strFile);
    return !scripting::Components::isRemoved(strName);
}

} // namespace

void subSetupFS() try {
    subTrace(
        "Creating Scripting.FileSystemObject\r\nThis component is normally installed with Internet Explorer 4.0 or "
        "later");
    if (fsoFileSystem.get())
        return;
    if (!fncComponentThere("Scripting.FileSystemObject", strScriptingComponent, blnFileSystemHealed))
        subCannotCreate("Scripting.FileSystemObject");
    fsoFileSystem = Ref<scripting::FileSystemObject>::make();
} catch (const Failure &failure) {
    subErrorHandler(failure, "subSetupFS");
}

void subSetupDic() try {
    subTrace(
        "Attempting to create a new Scripting.Dictionary object. This component is usually installed with Internet "
        "Explorer 4.0 or later");
    if (!fncComponentThere("Scripting.Dictionary", strScriptingComponent, blnDictionaryHealed))
        subCannotCreate("Scripting.Dictionary");
} catch (const Failure &failure) {
    subErrorHandler(failure, "modScriptingDic.fncCreateDic");
}

Ref<scripting::Shell> fncGetShell() {
    const QString strName = QStringLiteral("Wscript.Shell");
    if (scripting::Components::isRemoved(strName))
        subRegister(strShellComponent);
    if (!scripting::Components::isRemoved(strName))
        return Ref<scripting::Shell>::make();
    window::msgBox("ERROR\r\nThis component is usually installed with Internet Explorer 4.0 or later\r\n"
                   "Please download the Windows Scripting Runtime from Microsoft Downloads to resolve this issue!",
                   window::Buttons::OK, window::Icon::Critical, strProgramTitle);
    subQuit();
}

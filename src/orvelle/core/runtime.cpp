// Component objects, starting programs, windows.

#include "orvelle/core/runtime.h"

#include "orvelle/core/dialogs.h"
#include "platform/scripting/components.h"
#include "platform/window/window.h"

#include <QCollator>

ProcessLocal<Ref<scripting::FileSystemObject>> fsoFileSystem;

namespace {

constexpr char strScriptingComponent[] = "scrrun.dll";
constexpr char strShellComponent[] = "wshom.ocx";

/// Healing of a component is tried once in a process.
ProcessLocal<bool> blnFileSystemHealed;
ProcessLocal<bool> blnDictionaryHealed;

/// Registers a component's file with the system, without waiting.
void subRegister(const QString &strFile) {
    (void)Attempt([&] { scripting::currentLauncher().start("regsvr32", {strFile, "/s"}); });
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

QCollator fncRegionalOrder() {
    QCollator collator(Region::locale());
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
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

qint32 fncCompareText(const QString &strLeft, const QString &strRight) {
    return fncRegionalOrder().compare(strLeft.toCaseFolded(), strRight.toCaseFolded());
}

QList<qsizetype> fncSortedPlaces(const QStringList &strTexts) {
    const QCollator collator = fncRegionalOrder();
    std::vector<QCollatorSortKey> keys;
    QList<qsizetype> places;
    for (const QString &strText : strTexts) {
        places.append(places.size());
        keys.push_back(collator.sortKey(strText.toCaseFolded()));
    }
    const auto fncKey = [&](qsizetype i) { return keys[static_cast<std::size_t>(places.at(i))]; };
    // Rows jump over others when they are swapped, so equal texts don't keep their order: it is the order that people
    // have in their lists.
    for (qsizetype i = 0; i + 1 < places.size(); ++i) {
        for (qsizetype j = i; j < places.size(); ++j) {
            if (fncKey(i).compare(fncKey(j)) > 0)
                places.swapItemsAt(i, j);
        }
    }
    return places;
}

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
    (void)Attempt([&] { scripting::Shell().Run(strURL, 1); });
}

void subOpenLink(const QString &strURL) {
    if (Attempt([&] { fncGetShell()->Run(strURL); }))
        subAssistantMessage(ouaOutlook, "Failed to start web browser!");
}

void subEnsureVisibleTaskBar(window::Form &frm, const QString &strTitle) try {
    subTrace("Trying to make sure the form appears in the Activity bar");
    frm.setInTaskBar(true);
    (void)Attempt([&] {
        if (!strTitle.isEmpty())
            window::activate(strTitle);
    });
    (void)Attempt([&] {
        if (!frm.Visible())
            return;
        window::activate(frm.Caption());
        frm.SetFocus();
    });
} catch (const Failure &failure) {
    subErrorHandler(failure, "modAPI.subEnsureVisibleTaskBar");
}

#include "platform/launch/launcher.h"
#include "platform/print/printhtml.h"
#include "platform/scripting/filesystem.h"
#include "platform/scripting/path.h"
#include "platform/scripting/shell.h"
#include "platform/window/window.h"

#include <QDir>
#include <QFileInfo>

namespace scripting {

namespace {
QString joined(const QString &folder, const QString &name) { return QDir(nativePath(folder)).filePath(name); }
} // namespace

void FolderItem::InvokeVerb(const QString &verb) const {
    const bool isPrint = verb.compare(u"print", Qt::CaseInsensitive) == 0;
    if (!isPrint && !verb.isEmpty() && verb.compare(u"open", Qt::CaseInsensitive) != 0)
        throw Failure(failures::memberMissing, QStringLiteral("%1 can't be told to %2.").arg(m_path, verb));
    const auto failure = Attempt([&] { isPrint ? print() : open(); });
    if (failure)
        window::msgBox(failure->description(), window::Buttons::OK, window::Icon::Critical, m_path);
}

void FolderItem::open() const {
    const QString path = nativePath(m_path);
    const QFileInfo file(path);
    if (file.suffix().compare(u"exe", Qt::CaseInsensitive) == 0 && file.isFile())
        launch::currentLauncher().start(path, {});
    else
        launch::currentLauncher().handOver(QStringLiteral("xdg-open"), {path});
}

void FolderItem::print() const {
    const QFileInfo file(nativePath(m_path));
    const bool isPage = file.suffix().compare(u"htm", Qt::CaseInsensitive) == 0 ||
                        file.suffix().compare(u"html", Qt::CaseInsensitive) == 0;
    // The spooler knows no HTML and would print the source.
    if (isPage)
        print::printHtml(FileSystemObject().OpenTextFile(m_path)->ReadAll(), file.completeBaseName());
    else
        launch::currentLauncher().handOver(QStringLiteral("lp"), {QStringLiteral("--"), file.filePath()});
}

qint32 FolderItems::Count() const {
    const QDir folder(nativePath(m_folder));
    return static_cast<qint32>(folder.entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size());
}

Ref<FolderItem> FolderItems::Item(const QString &name) const {
    if (name.isEmpty() || !QFileInfo::exists(joined(m_folder, name)))
        return nullptr;
    return Ref<FolderItem>::make(pathText(joined(m_folder, name)));
}

Ref<ShellFolder> ShellApplication::NameSpace(const QString &folder) const {
    if (!FileSystemObject().FolderExists(folder))
        return nullptr;
    return Ref<ShellFolder>::make(folder);
}

} // namespace scripting

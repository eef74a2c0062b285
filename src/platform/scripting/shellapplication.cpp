#include "platform/scripting/filesystem.h"
#include "platform/scripting/path.h"
#include "platform/scripting/shell.h"

#include <QDir>
#include <QFileInfo>

namespace scripting {

namespace {
QString joined(const QString &folder, const QString &name) { return QDir(nativePath(folder)).filePath(name); }
} // namespace

void FolderItem::InvokeVerb(const QString &verb) const {
    const QString path = nativePath(m_path);
    if (verb.compare(u"print", Qt::CaseInsensitive) == 0)
        return currentLauncher().start(QStringLiteral("lp"), {QStringLiteral("--"), path});
    if (!verb.isEmpty() && verb.compare(u"open", Qt::CaseInsensitive) != 0)
        throw Failure(failures::memberMissing, QStringLiteral("%1 can't be told to %2.").arg(m_path, verb));
    const QFileInfo file(path);
    if (file.suffix().compare(u"exe", Qt::CaseInsensitive) == 0 && file.isFile())
        return currentLauncher().start(path, {});
    currentLauncher().start(QStringLiteral("xdg-open"), {path});
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

#include "platform/scripting/diskfailure.h"
#include "platform/scripting/filesystem.h"
#include "platform/scripting/path.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>

namespace scripting {

QString Folder::Name() const { return QFileInfo(nativePath(m_path)).fileName(); }

bool Folder::IsRootFolder() const { return QDir(nativePath(m_path)).isRoot(); }

Ref<Folder> Folder::ParentFolder() const {
    if (IsRootFolder())
        return nullptr;
    return Ref<Folder>::make(pathText(QFileInfo(nativePath(m_path)).absolutePath()));
}

QList<Ref<Folder>> Folder::SubFolders() const {
    const QDir folder(nativePath(m_path));
    if (!folder.exists())
        throw diskFailure(ENOENT, QStringLiteral("list"), m_path);
    if (!folder.isReadable())
        throw diskFailure(EACCES, QStringLiteral("list"), m_path);
    QList<Ref<Folder>> folders;
    for (const QString &name : folder.entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name))
        folders.append(Ref<Folder>::make(pathText(folder.absoluteFilePath(name))));
    return folders;
}

} // namespace scripting

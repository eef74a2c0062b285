#include "desk/objects/folderpath.h"

#include "desk/objects/othermailboxes.h"
#include "desk/objects/session.h"

namespace desk {
namespace {

QStringList partsOf(const QString &path) { return QString(path).replace(u'/', u'\\').split(u'\\', Qt::SkipEmptyParts); }

[[noreturn]] void missing(const QString &name, const QString &path) {
    throw Failure(
        failures::notFound,
        QStringLiteral("There is no folder \"%1\" on the way to %2. See the list of folders.").arg(name, path));
}

FolderPlace topFolder(Session &session, const QStringList &parts, const QString &path) {
    for (Store *store : session.stores()) {
        const FolderRecord root = store->root();
        if (!parts.isEmpty() && root.name == parts.first()) {
            if (store == &session.mailbox())
                session.makeSpecialFolders();
            return {store, root};
        }
    }
    // It may be another person's mailbox that could not be opened.
    if (!personOf(parts.value(0)).isEmpty())
        session.otherMailboxes().look();
    missing(parts.value(0), path);
}

} // namespace

FolderPlace folderAt(Session &session, const QString &path) {
    const QStringList parts = partsOf(path);
    FolderPlace place = topFolder(session, parts, path);
    for (const QString &name : parts.mid(1)) {
        const auto folder = place.store->findFolder(place.folder.id, name);
        if (!folder)
            missing(name, path);
        place.folder = *folder;
    }
    return place;
}

FolderPlace makeFolderAt(Session &session, const QString &path) {
    constexpr qint32 postType = 6;
    const QStringList parts = partsOf(path);
    FolderPlace place = topFolder(session, parts, path);
    for (const QString &name : parts.mid(1)) {
        auto folder = place.store->findFolder(place.folder.id, name);
        if (!folder) {
            FolderRecord record;
            record.parent = place.folder.id;
            record.name = name;
            // What people share they post.
            const bool isTop = place.folder.parent == 0 && place.store == &session.publicStore();
            record.defaultItemType = isTop ? postType : place.folder.defaultItemType;
            folder = place.store->addFolder(record);
        }
        place.folder = *folder;
    }
    return place;
}

QString pathOf(Store &store, const FolderRecord &folder) {
    QString path = folder.name;
    FolderRecord above = folder;
    while (above.parent != 0) {
        above = store.folder(above.parent);
        path = above.name + u'\\' + path;
    }
    return QStringLiteral("\\\\") + path;
}

} // namespace desk

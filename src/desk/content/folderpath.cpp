#include "desk/content/folderpath.h"

#include "desk/content/mailboxes.h"
#include "desk/content/othermailboxes.h"

namespace desk {
namespace {

QStringList partsOf(const QString &path) { return QString(path).replace(u'/', u'\\').split(u'\\', Qt::SkipEmptyParts); }

[[noreturn]] void missing(const QString &name, const QString &path) {
    throw Failure(
        failures::notFound,
        QStringLiteral("There is no folder \"%1\" on the way to %2. See the list of folders.").arg(name, path));
}

FolderPlace topFolder(Mailboxes &mailboxes, const QStringList &parts, const QString &path) {
    for (Store *store : mailboxes.stores()) {
        const FolderRecord root = store->root();
        if (!parts.isEmpty() && root.name == parts.first()) {
            if (store == &mailboxes.mailbox())
                mailboxes.makeSpecialFolders();
            return {store, root};
        }
    }
    // It may be another person's mailbox that could not be opened.
    if (!personOf(parts.value(0)).isEmpty())
        mailboxes.otherMailboxes().look();
    missing(parts.value(0), path);
}

} // namespace

FolderPlace folderAt(Mailboxes &mailboxes, const QString &path) {
    const QStringList parts = partsOf(path);
    FolderPlace place = topFolder(mailboxes, parts, path);
    for (const QString &name : parts.mid(1)) {
        const auto folder = place.store->findFolder(place.folder.id, name);
        if (!folder)
            missing(name, path);
        place.folder = *folder;
    }
    return place;
}

FolderPlace makeFolderAt(Mailboxes &mailboxes, const QString &path) {
    constexpr qint32 postType = 6;
    const QStringList parts = partsOf(path);
    FolderPlace place = topFolder(mailboxes, parts, path);
    for (const QString &name : parts.mid(1)) {
        auto folder = place.store->findFolder(place.folder.id, name);
        if (!folder) {
            FolderRecord record;
            record.parent = place.folder.id;
            record.name = name;
            // What people share they post.
            const bool isTop = place.folder.parent == 0 && place.store == &mailboxes.publicStore();
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

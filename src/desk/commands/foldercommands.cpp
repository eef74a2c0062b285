#include "desk/commands/commands.h"
#include "desk/commands/output.h"
#include "desk/content/folderpath.h"
#include "desk/objects/session.h"

#include <QJsonArray>

namespace desk {
namespace {

constexpr int pageSize = 500;

bool isMail(const ItemRecord &item) {
    return item.messageClass.startsWith(QStringLiteral("IPM.Note"), Qt::CaseInsensitive);
}

QList<ItemRecord> mailIn(Store &store, FolderId folder) {
    QList<ItemRecord> mail;
    qint64 arrival = 0;
    for (;;) {
        const QList<ItemRecord> page = store.itemsArrivedAfter(folder, arrival, pageSize);
        for (const ItemRecord &item : page) {
            arrival = item.arrival;
            if (isMail(item))
                mail.append(item);
        }
        if (page.size() < pageSize)
            return mail;
    }
}

QJsonObject jsonOf(Store &store, const FolderRecord &folder) {
    return {{"path", pathOf(store, folder)},   {"name", folder.name},
            {"entryId", folder.entryId},       {"storeId", store.storeId()},
            {"items", store.count(folder.id)}, {"defaultItemType", folder.defaultItemType},
            {"homePage", folder.homePageUrl},  {"homePageOn", folder.homePageOn}};
}

/// A folder and those below it, from the top down.
void collect(Store &store, const FolderRecord &folder, QList<FolderPlace> &all) {
    all.append({&store, folder});
    for (const FolderRecord &child : store.childFolders(folder.id))
        collect(store, child, all);
}

void printWithMail(const QList<FolderPlace> &folders) {
    for (const FolderPlace &place : folders) {
        const QList<ItemRecord> mail = mailIn(*place.store, place.folder.id);
        if (mail.isEmpty())
            continue;
        printLine(pathOf(*place.store, place.folder));
        for (const ItemRecord &item : mail)
            printLine(QStringLiteral("    %1  (%2)").arg(plainText(item.subject), plainText(item.senderName)));
    }
}

} // namespace

int foldersCommand(const CommandLine &line) {
    const std::shared_ptr<Session> session = Session::open(Profile(line.desk));
    session->makeSpecialFolders();
    QList<FolderPlace> folders;
    for (Store *store : session->stores())
        collect(*store, store->root(), folders);
    if (line.json) {
        QJsonArray all;
        for (const FolderPlace &place : std::as_const(folders)) {
            QJsonObject folder = jsonOf(*place.store, place.folder);
            if (line.mail) {
                QJsonArray mail;
                for (const ItemRecord &item : mailIn(*place.store, place.folder.id))
                    mail.append(QJsonObject{{"entryId", item.entryId}, {"subject", item.subject}});
                folder["mail"] = mail;
            }
            all.append(folder);
        }
        printJson(all);
    } else if (line.mail) {
        printWithMail(folders);
    } else {
        for (const FolderPlace &place : std::as_const(folders))
            printLine(QStringLiteral("%1\t%2")
                          .arg(pathOf(*place.store, place.folder))
                          .arg(place.store->count(place.folder.id)));
    }
    return 0;
}

int addFolderCommand(const CommandLine &line) {
    const std::shared_ptr<Session> session = Session::open(Profile(line.desk));
    FolderPlace place = makeFolderAt(*session, line.arguments.first());
    if (!line.homePage.isEmpty()) {
        place.folder.homePageUrl = line.homePage;
        place.folder.homePageOn = true;
        place.folder = place.store->saveFolder(place.folder);
    }
    if (line.json)
        printJson(jsonOf(*place.store, place.folder));
    else
        printLine(pathOf(*place.store, place.folder));
    return 0;
}

} // namespace desk

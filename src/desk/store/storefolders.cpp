#include "desk/store/connection.h"
#include "desk/store/entryid.h"
#include "desk/store/folderorder.h"
#include "desk/store/itemwriter.h"
#include "desk/store/statements.h"
#include "desk/store/store.h"
#include "desk/store/storedtext.h"
#include "platform/value/failure.h"

namespace desk {

namespace {

FolderRecord folderFrom(const Row &row, const QByteArray &storeTag) {
    return {.id = row.number(0),
            .parent = row.number(1),
            .entryId = EntryId{.kind = EntryId::Kind::Folder, .storeTag = storeTag, .number = row.number(0)}.toText(),
            .name = row.text(2),
            .defaultItemType = static_cast<qint32>(row.number(3)),
            .homePageUrl = row.text(4),
            .homePageOn = row.number(5) != 0,
            .special = static_cast<SpecialFolder>(row.number(6))};
}

Failure folderMissing() {
    return {failures::notFound, QStringLiteral("The folder no longer exists; somebody removed it.")};
}

Failure nameTaken(const QString &name) {
    return {failures::keyExists, QStringLiteral("There is a folder named \"%1\" here; choose another name.").arg(name)};
}

void requireNotRoot(const FolderRecord &folder) {
    if (folder.parent == 0)
        throw Failure(failures::invalidCall,
                      QStringLiteral("The folder \"%1\" is the top of its store and stays.").arg(folder.name));
}

} // namespace

QList<FolderRecord> Store::foldersBy(std::string_view sql, std::initializer_list<Bind> binds) {
    QList<FolderRecord> found;
    m_connection->each(sql, binds, [&](const Row &row) { found.append(folderFrom(row, m_tag)); });
    return found;
}

std::optional<FolderRecord> Store::folderBy(std::string_view sql, std::initializer_list<Bind> binds) {
    const QList<FolderRecord> found = foldersBy(sql, binds);
    return found.isEmpty() ? std::nullopt : std::optional(found.first());
}

FolderRecord Store::root() {
    std::optional<FolderRecord> found = folderBy(sql::rootFolder, {});
    if (!found)
        throw Failure(failures::unspecified,
                      QStringLiteral("The store %1 is damaged (it has lost its top folder). Put a "
                                     "copy of the file from a backup in its place.")
                          .arg(path()));
    return *std::move(found);
}

FolderRecord Store::folder(FolderId id) {
    std::optional<FolderRecord> found = folderBy(sql::folder, {{"id", id}});
    if (!found)
        throw folderMissing();
    return *std::move(found);
}

std::optional<FolderRecord> Store::folderByEntryId(const QString &entryId) {
    return folderBy(sql::folder, {{"id", numberFor(entryId, EntryId::Kind::Folder)}});
}

std::optional<FolderRecord> Store::specialFolder(SpecialFolder special) {
    return folderBy(sql::specialFolder, {{"special", static_cast<int>(special)}});
}

QList<FolderRecord> Store::contactsFolders() { return foldersBy(sql::contactsFolders, {}); }

QList<FolderRecord> Store::childFolders(FolderId parent) { return foldersBy(sql::childFolders, {{"parent", parent}}); }

QList<CountedFolder> Store::countedFolders(const std::string &condition, FolderId id) {
    QList<CountedFolder> found;
    m_connection->each(sql::countedFolders(m_keepsCounts, condition), {{"id", id}}, [&](const Row &row) {
        found.append({.folder = folderFrom(row, m_tag),
                      .counts = {.items = row.number(7), .unread = row.number(8)},
                      .hasChildren = row.number(9) != 0});
    });
    return found;
}

QList<CountedFolder> Store::countedChildFolders(FolderId parent) { return countedFolders("f.parent = :id", parent); }

CountedFolder Store::countedFolder(FolderId id) {
    const QList<CountedFolder> found = countedFolders("f.id = :id", id);
    if (found.isEmpty())
        throw folderMissing();
    return found.first();
}

QList<FolderRecord> Store::childFoldersThatMayReach(FolderId parent, double least) {
    return foldersBy(sql::childFoldersThatMayReach, {{"parent", parent}, {"least", least}});
}

std::optional<FolderRecord> Store::findFolder(FolderId parent, const QString &name) {
    return folderBy(sql::folderByName, {{"parent", parent}, {"name", storedText(name)}});
}

FolderRecord Store::addFolder(const FolderRecord &record) {
    Transaction transaction(*m_connection);
    static_cast<void>(folder(record.parent));
    if (findFolder(record.parent, record.name))
        throw nameTaken(record.name);
    const FolderId id = takeNumbers(*m_connection);
    m_connection->run(sql::addFolder, {{"id", id},
                                       {"parent", record.parent},
                                       {"name", storedText(record.name)},
                                       {"item_type", record.defaultItemType},
                                       {"home_page", storedText(record.homePageUrl)},
                                       {"home_page_on", record.homePageOn ? 1 : 0},
                                       {"special", static_cast<int>(record.special)}});
    FolderRecord added = folder(id);
    transaction.commit();
    return added;
}

FolderRecord Store::saveFolder(const FolderRecord &record) {
    Transaction transaction(*m_connection);
    const FolderRecord standing = folder(record.id);
    if (const auto sameName = findFolder(standing.parent, record.name); sameName && sameName->id != record.id)
        throw nameTaken(record.name);
    m_connection->run(sql::saveFolder, {{"name", storedText(record.name)},
                                        {"item_type", record.defaultItemType},
                                        {"home_page", storedText(record.homePageUrl)},
                                        {"home_page_on", record.homePageOn ? 1 : 0},
                                        {"special", static_cast<int>(record.special)},
                                        {"id", record.id}});
    FolderRecord saved = folder(record.id);
    transaction.commit();
    return saved;
}

FolderRecord Store::moveFolder(FolderId id, FolderId parent) {
    Transaction transaction(*m_connection);
    FolderRecord standing = folder(id);
    requireNotRoot(standing);
    for (FolderId above = parent; above != 0; above = folder(above).parent)
        if (above == id)
            throw Failure(failures::invalidCall,
                          QStringLiteral("The folder \"%1\" cannot be put into itself; choose another place.")
                              .arg(standing.name));
    if (parent == standing.parent)
        return standing;
    QString name = standing.name;
    for (int number = 2; findFolder(parent, name); ++number)
        name = QStringLiteral("%1 (%2)").arg(standing.name).arg(number);
    m_connection->run(sql::moveFolder, {{"parent", parent}, {"name", storedText(name)}, {"id", id}});
    FolderRecord moved = folder(id);
    transaction.commit();
    return moved;
}

void Store::removeFolder(FolderId id) {
    Transaction transaction(*m_connection);
    requireNotRoot(folder(id));
    m_connection->run(sql::removeFolder, {{"id", id}});
    transaction.commit();
    // Numbers are never given out again, but what is remembered of the folder must not outlive it.
    m_order->added();
}

} // namespace desk

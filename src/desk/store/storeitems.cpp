#include "desk/store/connection.h"
#include "desk/store/entryid.h"
#include "desk/store/folderorder.h"
#include "desk/store/itemreader.h"
#include "desk/store/itemwriter.h"
#include "desk/store/room.h"
#include "desk/store/statements.h"
#include "desk/store/store.h"
#include "platform/value/failure.h"

namespace desk {

namespace {

Failure itemGone() {
    return {failures::itemGone,
            QStringLiteral("The item was deleted or moved away by somebody else; look for it again.")};
}

Failure itemChanged() {
    return {
        failures::itemChanged,
        QStringLiteral("The item was changed by somebody else in the meantime; open it again and repeat the change.")};
}

/// Fills in what the store keeps of an item by itself. Read inside the writer's transaction: nobody can change it
/// before the commit. Fails with `itemGone` unless the item stands in that folder.
void readStanding(Connection &connection, FolderId folder, ItemRecord &record) {
    record.folder = 0;
    connection.each(sql::standing(), {{"id", record.id}}, [&record](const Row &row) {
        record.folder = row.number(0);
        record.version = row.number(1);
        record.arrival = row.number(2);
        record.attachmentCount = static_cast<qint32>(row.number(3));
        record.size = row.number(4);
    });
    if (record.folder == 0 || record.folder != folder)
        throw itemGone();
}

/// Whether a save writes more than stands, as far as fields and properties tell. REQUIRES: in the save's transaction.
bool makesLarger(Connection &connection, const ItemRecord &standing, const ItemRecord &fields, const ItemParts &parts) {
    if (parts.bodies || parts.attachments || parts.original)
        return true;
    ItemParts before;
    if (parts.properties)
        before.properties = readProperties(connection, fields.id);
    return weightOf(fields) + weightOf(parts) > weightOf(standing) + weightOf(before);
}

} // namespace

FolderCounts Store::counts(FolderId folder) {
    std::optional<FolderCounts> found;
    m_connection->each(m_keepsCounts ? sql::counts : sql::countItems, {{"id", folder}},
                       [&found](const Row &row) { found = {.items = row.number(0), .unread = row.number(1)}; });
    if (!found)
        throw Failure(failures::notFound, QStringLiteral("The folder no longer exists; somebody removed it."));
    return *found;
}

std::optional<ItemRecord> Store::nth(FolderId folder, qint64 position) {
    const ItemId id = m_order->nth(folder, position);
    return id == 0 ? std::nullopt : item(id);
}

QList<ItemRecord> Store::itemsArrivedAfter(FolderId folder, qint64 arrival, int limit) {
    QList<ItemRecord> found;
    m_connection->each(sql::itemsAfter(), {{"folder", folder}, {"arrival", arrival}, {"limit", limit}},
                       [&](const Row &row) { found.append(recordFrom(row, m_tag)); });
    return found;
}

std::optional<ItemRecord> Store::item(ItemId id) {
    std::optional<ItemRecord> found;
    m_connection->each(sql::itemById(), {{"id", id}}, [&](const Row &row) { found = recordFrom(row, m_tag); });
    return found;
}

ItemRecord Store::standingItem(ItemId id) {
    std::optional<ItemRecord> found = item(id);
    if (!found)
        throw itemGone();
    return *std::move(found);
}

std::optional<ItemRecord> Store::itemByEntryId(const QString &entryId) {
    const ItemId id = numberFor(entryId, EntryId::Kind::Item);
    return id == 0 ? std::nullopt : item(id);
}

Bodies Store::bodies(ItemId id) { return readBodies(*m_connection, id); }
QByteArray Store::original(ItemId id) { return readOriginal(*m_connection, id); }
QList<Property> Store::properties(ItemId id) { return readProperties(*m_connection, id); }
QList<AttachmentRecord> Store::attachments(ItemId id) { return readAttachments(*m_connection, id); }
QByteArray Store::attachmentData(qint64 attachmentId) { return readAttachmentData(*m_connection, attachmentId); }

ItemRecord Store::insert(FolderId folder, const ItemRecord &fields, const ItemParts &parts) {
    ItemRecord record = fields;
    record.modifiedAt = Clock::now();
    if (record.createdAt.isZero())
        record.createdAt = record.modifiedAt;
    ItemParts kept = parts;
    if (kept.properties)
        kept.properties = normalized(*kept.properties);

    if (!hasRoom(path(), Growth::NewItem, weightOf(record) + weightOf(kept)))
        throw noRoom(path());
    Transaction transaction(*m_connection);
    if (!m_connection->value(sql::removals, {{"id", folder}}))
        throw Failure(failures::notFound,
                      QStringLiteral("The folder of the new item no longer exists; choose another folder."));
    record.id = takeNumbers(*m_connection);
    record.entryId = EntryId{.kind = EntryId::Kind::Item, .storeTag = m_tag, .number = record.id}.toText();
    const Sizes sizes =
        insertItem(*m_connection, {.id = record.id, .folder = folder, .arrival = record.id}, record, kept);
    transaction.commit();
    record.folder = folder;
    record.version = 1;
    record.arrival = record.id;
    record.attachmentCount = sizes.attachmentCount;
    record.size = sizes.shown();
    m_order->added();
    return record;
}

ItemRecord Store::save(const ItemRecord &fields, const ItemParts &parts) {
    ItemRecord record = fields;
    record.modifiedAt = Clock::now();
    record.entryId = EntryId{.kind = EntryId::Kind::Item, .storeTag = m_tag, .number = record.id}.toText();
    ItemParts kept = parts;
    if (kept.properties)
        kept.properties = normalized(*kept.properties);

    Transaction transaction(*m_connection);
    readStanding(*m_connection, fields.folder, record);
    if (record.version != fields.version)
        throw itemChanged();
    if (!hasRoom(path(), Growth::Change, weightOf(kept)) &&
        makesLarger(*m_connection, standingItem(fields.id), record, kept))
        throw noRoom(path());
    updateItem(*m_connection, record, kept);
    ++record.version;
    if (kept.bodies || kept.attachments || kept.original)
        readStanding(*m_connection, fields.folder, record);
    transaction.commit();
    return record;
}

ItemRecord Store::copy(ItemId id) {
    Transaction transaction(*m_connection);
    if (!hasRoom(path(), Growth::NewItem, standingItem(id).size))
        throw noRoom(path());
    const QList<AttachmentRecord> attachments = readAttachments(*m_connection, id);
    const qint64 first = takeNumbers(*m_connection, 1 + attachments.size());
    const ItemId copy = first;
    m_connection->run(sql::copyItem(), {{"copy", copy}, {"arrival", copy}, {"item", id}});
    m_connection->run(sql::copyBodies, {{"copy", copy}, {"item", id}});
    m_connection->run(sql::copyOriginal, {{"copy", copy}, {"item", id}});
    m_connection->run(sql::copyProperties, {{"copy", copy}, {"arrival", copy}, {"item", id}});
    for (qsizetype i = 0; i < attachments.size(); ++i)
        m_connection->run(sql::copyAttachment, {{"copy_id", first + 1 + i}, {"copy", copy}, {"id", attachments[i].id}});
    ItemRecord record = standingItem(copy);
    transaction.commit();
    m_order->added();
    return record;
}

ItemRecord Store::move(const ItemRecord &moved, FolderId target) {
    Transaction transaction(*m_connection);
    ItemRecord before = moved;
    readStanding(*m_connection, moved.folder, before);
    if (!m_connection->value(sql::removals, {{"id", target}}))
        throw Failure(failures::notFound, QStringLiteral("The folder to move the item to no longer exists; choose "
                                                         "another folder."));
    const qint64 arrival = takeNumbers(*m_connection);
    m_connection->run(sql::placeItem, {{"folder", target}, {"arrival", arrival}, {"id", moved.id}});
    m_connection->run(sql::placeProperties, {{"folder", target}, {"arrival", arrival}, {"id", moved.id}});
    const qint64 removals = noteRemoval(*m_connection, moved.folder);
    ItemRecord record = standingItem(moved.id);
    transaction.commit();
    m_order->removed(moved.folder, before.arrival, removals);
    m_order->added();
    return record;
}

void Store::remove(const ItemRecord &removed) {
    Transaction transaction(*m_connection);
    ItemRecord before = removed;
    readStanding(*m_connection, removed.folder, before);
    const qint64 removals = removeStanding(*m_connection, removed.id, removed.folder);
    transaction.commit();
    m_order->removed(removed.folder, before.arrival, removals);
}

} // namespace desk

#include "desk/store/schema.h"

#include "desk/store/entryid.h"
#include "desk/store/itemcolumns.h"
#include "desk/store/room.h"
#include "desk/store/storedtext.h"
#include "platform/storage/draft.h"
#include "platform/storage/durable.h"

#include <QFileInfo>
#include <QRandomGenerator>
#include <QThread>

namespace desk {

namespace {

/// Marks the file as a message store, whatever its version.
constexpr qint64 applicationId = 0x4D53544F;
/// Version 1 kept no counts, and its indexes of subject and sender left out the empty ones.
constexpr qint64 schemaVersion = 2;
constexpr qint64 firstVersionWithCounts = 2;

/// Every table but `items`, whose columns follow from the list of fields.
///
/// `store` has one row. `sequence` is the last number given out, of a folder, item, attachment or arrival alike: none
/// is ever given out twice. `removals` counts the items that left a folder, so that a reader knows whether the
/// positions that it remembers still hold. A row of `properties` repeats its item's folder and arrival, so that one
/// index finds the first item of a folder by a property's value. The counts of a row of `folders` are kept by the
/// triggers below, whoever writes.
constexpr const char *tables[] = {
    "CREATE TABLE store (tag BLOB NOT NULL, sequence INTEGER NOT NULL)",

    "CREATE TABLE folders (id INTEGER PRIMARY KEY, parent INTEGER REFERENCES folders ON DELETE CASCADE,"
    " name TEXT NOT NULL, item_type INTEGER NOT NULL, home_page TEXT NOT NULL, home_page_on INTEGER NOT NULL,"
    " special INTEGER NOT NULL, removals INTEGER NOT NULL DEFAULT 0, item_count INTEGER NOT NULL DEFAULT 0,"
    " unread_count INTEGER NOT NULL DEFAULT 0)",
    "CREATE UNIQUE INDEX folders_by_name ON folders (parent, name)",

    "CREATE TABLE bodies (item INTEGER PRIMARY KEY REFERENCES items ON DELETE CASCADE, plain TEXT NOT NULL,"
    " html TEXT NOT NULL)",
    "CREATE TABLE originals (item INTEGER PRIMARY KEY REFERENCES items ON DELETE CASCADE, data BLOB NOT NULL)",

    "CREATE TABLE properties (item INTEGER NOT NULL REFERENCES items ON DELETE CASCADE, name_key TEXT NOT NULL,"
    " position INTEGER NOT NULL, name TEXT NOT NULL, type INTEGER NOT NULL, value, value_key TEXT NOT NULL,"
    " folder INTEGER, arrival INTEGER NOT NULL, PRIMARY KEY (item, name_key)) WITHOUT ROWID",
    "CREATE INDEX properties_by_value ON properties (name_key, value_key, folder, arrival) WHERE value_key <> ''",

    // The data stand last: the columns before them are read without them.
    "CREATE TABLE attachments (id INTEGER PRIMARY KEY, item INTEGER NOT NULL REFERENCES items ON DELETE CASCADE,"
    " position INTEGER NOT NULL, type INTEGER NOT NULL, file_name TEXT NOT NULL, display_name TEXT NOT NULL,"
    " mime_type TEXT NOT NULL, content_id TEXT NOT NULL, size INTEGER NOT NULL, data BLOB NOT NULL)",
    "CREATE INDEX attachments_by_item ON attachments (item, position)",

    "CREATE TABLE transfers_in (item INTEGER PRIMARY KEY REFERENCES items ON DELETE CASCADE, transfer BLOB NOT NULL,"
    " source BLOB NOT NULL, folder INTEGER NOT NULL)",
    "CREATE TABLE transfers_out (transfer BLOB PRIMARY KEY, target BLOB NOT NULL) WITHOUT ROWID",
};

/// An item without a folder is a copy in the middle of a move between stores.
std::string itemsTable() {
    std::string sql = "CREATE TABLE items (id INTEGER PRIMARY KEY, folder INTEGER REFERENCES folders ON DELETE CASCADE,"
                      " version INTEGER NOT NULL, arrival INTEGER NOT NULL, modified_at REAL NOT NULL,"
                      " attachment_count INTEGER NOT NULL DEFAULT 0, body_bytes INTEGER NOT NULL DEFAULT 0,"
                      " attachment_bytes INTEGER NOT NULL DEFAULT 0, original_bytes INTEGER NOT NULL DEFAULT 0";
    for (const ItemColumn &column : itemColumns()) {
        static constexpr const char *kinds[] = {" TEXT", " INTEGER", " INTEGER", " REAL"};
        sql.append(", ").append(column.name).append(kinds[column.member.index()]).append(" NOT NULL");
        if (column.isIndexed())
            sql.append(", ").append(column.keyName).append(" TEXT NOT NULL");
    }
    return sql + ")";
}

/// Empty values are left out: most items have none of a field, and an index of them would cost every save a page. A
/// list in the field's order shows all of them.
std::string itemsIndex(const ItemColumn &column) {
    const std::string key(column.indexedName());
    const std::string index =
        "CREATE INDEX items_by_" + std::string(column.name) + " ON items (folder, " + key + ", arrival)";
    return column.isSortable ? index : index + " WHERE " + key + " <> ''";
}

/// What keeps the counts of folders. An item in no folder counts nowhere. A folder's removal takes its items along when
/// its own row is gone already.
constexpr const char *countTriggers[] = {
    "CREATE TRIGGER count_insert AFTER INSERT ON items WHEN new.folder IS NOT NULL BEGIN"
    " UPDATE folders SET item_count = item_count + 1, unread_count = unread_count + (new.unread <> 0)"
    " WHERE id = new.folder; END",
    "CREATE TRIGGER count_delete AFTER DELETE ON items WHEN old.folder IS NOT NULL BEGIN"
    " UPDATE folders SET item_count = item_count - 1, unread_count = unread_count - (old.unread <> 0)"
    " WHERE id = old.folder; END",
    "CREATE TRIGGER count_update AFTER UPDATE OF folder, unread ON items"
    " WHEN old.folder IS NOT new.folder OR (old.unread <> 0) <> (new.unread <> 0) BEGIN"
    " UPDATE folders SET item_count = item_count - 1, unread_count = unread_count - (old.unread <> 0)"
    " WHERE id = old.folder;"
    " UPDATE folders SET item_count = item_count + 1, unread_count = unread_count + (new.unread <> 0)"
    " WHERE id = new.folder; END",
};

void createCountTriggers(Connection &connection) {
    for (const char *trigger : countTriggers)
        connection.once(trigger);
}

/// The few folders that are looked for by what they are, among those of any number of tickets. Stores of before these
/// indexes get them when they are opened: they change nothing but the time that a look-up takes.
constexpr const char *folderIndexes[] = {
    "CREATE INDEX IF NOT EXISTS folders_by_special ON folders (special) WHERE special <> 0",
    "CREATE INDEX IF NOT EXISTS folders_of_contacts ON folders (item_type) WHERE item_type = 2",
};

void createFolderIndexes(Connection &connection) {
    for (const char *index : folderIndexes)
        connection.once(index);
}

QByteArray randomTag() {
    QByteArray tag(EntryId::tagBytes, Qt::Uninitialized);
    for (char &byte : tag)
        byte = static_cast<char>(QRandomGenerator::system()->generate() & 0xFF);
    return tag;
}

void createTables(Connection &connection, const QString &rootName) {
    connection.once(itemsTable());
    for (const char *table : tables)
        connection.once(table);
    connection.once("CREATE INDEX items_by_arrival ON items (folder, arrival)");
    for (const ItemColumn &column : itemColumns())
        if (column.hasIndex())
            connection.once(itemsIndex(column));
    createCountTriggers(connection);
    createFolderIndexes(connection);
    connection.run("INSERT INTO store (tag, sequence) VALUES (:tag, 1)", {{"tag", randomTag()}});
    connection.run("INSERT INTO folders (id, parent, name, item_type, home_page, home_page_on, special)"
                   " VALUES (1, NULL, :name, 0, '', 0, 0)",
                   {{"name", storedText(rootName)}});
    connection.once("PRAGMA application_id = " + std::to_string(applicationId));
    connection.once("PRAGMA user_version = " + std::to_string(schemaVersion));
}

/// The file's version, 0 for an empty one. REQUIRES: in a transaction, since another process may be making the tables.
qint64 checkedVersion(Connection &connection) {
    const qint64 application = connection.once("PRAGMA application_id").toLongLong();
    const qint64 version = connection.once("PRAGMA user_version").toLongLong();
    const bool isEmpty = connection.once("SELECT count(*) FROM sqlite_master").toLongLong() == 0;
    if (application == 0 && version == 0 && isEmpty)
        return 0;
    if (application != applicationId)
        throw Failure(failures::unspecified,
                      QStringLiteral("The file %1 is another program's and no message store; choose another file.")
                          .arg(connection.path()));
    if (version > schemaVersion)
        throw Failure(failures::unspecified,
                      QStringLiteral("The store %1 was written by a newer version of this program (its format is %2, "
                                     "this program knows up to %3); update the program to open it.")
                          .arg(connection.path())
                          .arg(version)
                          .arg(schemaVersion));
    return version;
}

qint64 versionOf(Connection &connection) {
    Transaction reading(connection, Transaction::Kind::Read);
    const qint64 found = checkedVersion(connection);
    reading.commit();
    return found;
}

/// REQUIRES: in a writing transaction, on a store of version 1.
void addCountsAndOrders(Connection &connection) {
    connection.once("ALTER TABLE folders ADD COLUMN item_count INTEGER NOT NULL DEFAULT 0");
    connection.once("ALTER TABLE folders ADD COLUMN unread_count INTEGER NOT NULL DEFAULT 0");
    connection.once("UPDATE folders SET item_count = c.items, unread_count = c.unread FROM (SELECT folder,"
                    " count(*) AS items, sum(unread <> 0) AS unread FROM items WHERE folder IS NOT NULL"
                    " GROUP BY folder) AS c WHERE folders.id = c.folder");
    createCountTriggers(connection);
    for (const ItemColumn &column : itemColumns())
        if (column.isSortable) {
            connection.once("DROP INDEX IF EXISTS items_by_" + std::string(column.name));
            connection.once(itemsIndex(column));
        }
    connection.once("PRAGMA user_version = " + std::to_string(schemaVersion));
}

/// Leaves the store as it is where that can't be done.
void upgrade(Connection &connection) {
    // What is added stands in the log first. A log that has filled the disk is not taken in by itself.
    constexpr qint64 partThatIsAdded = 4;
    if (!hasRoom(connection.path(), Growth::NewItem, QFileInfo(connection.path()).size() / partThatIsAdded))
        return;
    Attempt([&] {
        Transaction transaction(connection);
        // Another process may have done it while this one waited.
        if (checkedVersion(connection) == 1)
            addCountsAndOrders(connection);
        transaction.commit();
    });
}

/// A file that was put together by other means could say so and not do so.
void requireCounts(Connection &connection) {
    const auto number = [&connection](const char *sql) { return connection.once(sql).toLongLong(); };
    if (number("SELECT count(*) FROM sqlite_master WHERE type = 'trigger' AND tbl_name = 'items' AND name IN"
               " ('count_insert', 'count_delete', 'count_update')") == std::ssize(countTriggers) &&
        number("SELECT count(*) FROM pragma_table_info('folders') WHERE name IN ('item_count', 'unread_count')") == 2)
        return;
    throw Failure(
        failures::unspecified,
        QStringLiteral("The store %1 is damaged (what keeps the numbers of its items is missing); it was left "
                       "as it is. Put a copy of the file from a backup in its place.")
            .arg(connection.path()));
}

/// The engine does not wait by itself when two connections switch a new file to its journal at once.
void useWriteAheadLog(Connection &connection, std::chrono::milliseconds wait) {
    const auto end = std::chrono::steady_clock::now() + wait;
    while (true) {
        const std::optional<Failure> failure = Attempt([&] { connection.once("PRAGMA journal_mode = WAL"); });
        if (!failure)
            return;
        if (failure->number() != failures::unspecified || std::chrono::steady_clock::now() > end)
            throw Failure(*failure);
        QThread::msleep(5);
    }
}

void refuseLoneLog(const QString &path) {
    const QString log = path + QStringLiteral("-wal");
    // The store comes before its log: one that is there by now was made by another program.
    if (QFileInfo(log).size() == 0 || QFileInfo::exists(path))
        return;
    throw Failure(failures::unspecified,
                  QStringLiteral("The store %1 is missing, but the log of its last changes is still there: %2. Put the "
                                 "store, or a backup of it, back; or move the log away to begin with a new store.")
                      .arg(path, log));
}

} // namespace

void makeStore(const QString &path, const QString &rootName, storage::Sharing sharing, std::chrono::milliseconds wait) {
    refuseLoneLog(path);
    std::optional<storage::Draft> draft;
    if (const auto failure = Attempt([&] { draft.emplace(path, wait); })) {
        const bool isFull = failure->number() == failures::noDiskSpace;
        throw Failure(isFull ? failures::noDiskSpace : failures::accessDenied,
                      QStringLiteral("The store %1 can't be made; check that its folder exists and that you may write "
                                     "to it. %2")
                          .arg(path, failure->description()));
    }
    if (QFileInfo::exists(path))
        return;
    if (sharing == storage::Sharing::Group)
        storage::shareWithGroupOf(draft->descriptor(), QFileInfo(path).absolutePath());
    {
        Connection connection(draft->path(), wait);
        Transaction transaction(connection);
        createTables(connection, rootName);
        transaction.commit();
        // With everything in the file itself: the log is begun by the first who opens it under its name.
        connection.once("PRAGMA journal_mode = WAL");
    }
    const auto failure = Attempt([&] { draft->publish(storage::Draft::Taken::Refuse); });
    if (failure && failure->number() != failures::fileExists)
        throw Failure(*failure);
}

Prepared prepareStore(Connection &connection, const QString &rootName, std::chrono::milliseconds wait) {
    const qint64 version = versionOf(connection);
    if (version == 0)
        useWriteAheadLog(connection, wait);
    connection.once("PRAGMA synchronous = FULL");
    connection.once("PRAGMA foreign_keys = ON");
    connection.once("PRAGMA cache_size = -16000");
    if (version == 0) {
        Transaction transaction(connection);
        // Another process may have made the tables while this one waited.
        if (checkedVersion(connection) == 0)
            createTables(connection, rootName);
        transaction.commit();
    } else {
        // Without them the store works as it did.
        Attempt([&] { createFolderIndexes(connection); });
    }
    if (version == 1)
        upgrade(connection);
    const bool keepsCounts = versionOf(connection) >= firstVersionWithCounts;
    if (keepsCounts)
        requireCounts(connection);
    const std::optional<QVariant> tag = connection.value("SELECT tag FROM store");
    if (!tag || tag->toByteArray().size() != EntryId::tagBytes)
        throw Failure(
            failures::unspecified,
            QStringLiteral("The store %1 is damaged (it has lost its tag); it was left as it is. Put a copy of "
                           "the file from a backup in its place.")
                .arg(connection.path()));
    return {.tag = tag->toByteArray(), .keepsCounts = keepsCounts};
}

} // namespace desk

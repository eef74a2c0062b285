/// Every statement that runs on a store, the fixed ones as they are and the others made from the list of fields. No
/// statement ever holds data: all values are parameters. To put another engine in SQLite's place, this file, schema.cpp
/// and connection.cpp are what changes.
#pragma once

#include "desk/store/itemcolumns.h"

namespace desk::sql {

// --- Numbers

// Two statements where one with a result could do: the engine builds a table in memory for such a result, which takes
// longer than all the rest of a small save.
constexpr std::string_view takeNumbers = "UPDATE store SET sequence = sequence + :count";
constexpr std::string_view lastNumber = "SELECT sequence FROM store";

// --- Folders

constexpr std::string_view folder = "SELECT id, parent, name, item_type, home_page, home_page_on, special FROM folders"
                                    " WHERE id = :id";
constexpr std::string_view rootFolder =
    "SELECT id, parent, name, item_type, home_page, home_page_on, special FROM folders WHERE parent IS NULL";
constexpr std::string_view specialFolder =
    "SELECT id, parent, name, item_type, home_page, home_page_on, special FROM folders WHERE special = :special"
    " AND special <> 0 ORDER BY id";
/// Written out, so that the engine takes the index of these folders alone.
constexpr std::string_view contactsFolders =
    "SELECT id, parent, name, item_type, home_page, home_page_on, special FROM folders WHERE item_type = 2"
    " ORDER BY id";
constexpr std::string_view childFolders =
    "SELECT id, parent, name, item_type, home_page, home_page_on, special FROM folders WHERE parent = :parent"
    " ORDER BY id";
constexpr std::string_view childFoldersThatMayReach =
    "SELECT id, parent, name, item_type, home_page, home_page_on, special FROM folders WHERE parent = :parent"
    " AND CAST(name AS REAL) >= :least ORDER BY id";
constexpr std::string_view folderByName =
    "SELECT id, parent, name, item_type, home_page, home_page_on, special FROM folders"
    " WHERE parent = :parent AND name = :name";
constexpr std::string_view parentOf = "SELECT parent FROM folders WHERE id = :id";
constexpr std::string_view addFolder =
    "INSERT INTO folders (id, parent, name, item_type, home_page, home_page_on, special)"
    " VALUES (:id, :parent, :name, :item_type, :home_page, :home_page_on, :special)";
constexpr std::string_view saveFolder =
    "UPDATE folders SET name = :name, item_type = :item_type, home_page = :home_page, home_page_on = :home_page_on,"
    " special = :special WHERE id = :id";
constexpr std::string_view moveFolder = "UPDATE folders SET parent = :parent, name = :name WHERE id = :id";
constexpr std::string_view removeFolder = "DELETE FROM folders WHERE id = :id";

// --- The order of a folder

constexpr std::string_view removals = "SELECT removals FROM folders WHERE id = :id";
constexpr std::string_view addRemoval = "UPDATE folders SET removals = removals + 1 WHERE id = :id";
constexpr std::string_view counts = "SELECT item_count, unread_count FROM folders WHERE id = :id";
/// In stores that keep no counts. An unknown folder has no row here either.
constexpr std::string_view countItems =
    "SELECT (SELECT count(*) FROM items WHERE folder = folders.id),"
    " (SELECT count(*) FROM items WHERE folder = folders.id AND unread <> 0) FROM folders WHERE id = :id";
/// Folders with their counts and whether they have subfolders.
std::string countedFolders(bool keepsCounts, const std::string &condition);
constexpr std::string_view orderUpwards =
    "SELECT arrival, id FROM items WHERE folder = :folder AND arrival > :arrival ORDER BY arrival LIMIT :limit";
constexpr std::string_view orderDownwards =
    "SELECT arrival, id FROM items WHERE folder = :folder AND arrival < :arrival ORDER BY arrival DESC LIMIT :limit";

// --- Items

constexpr std::string_view removeItem = "DELETE FROM items WHERE id = :id";
constexpr std::string_view placeItem =
    "UPDATE items SET folder = :folder, arrival = :arrival, version = version + 1 WHERE id = :id";
constexpr std::string_view placeProperties =
    "UPDATE properties SET folder = :folder, arrival = :arrival WHERE item = :id";

/// What the store keeps of an item by itself: folder, version, arrival, number of attachments, size.
const std::string &standing();
/// One item, by `:id`, unless it is in the middle of a move between stores.
const std::string &itemById();
/// Items of `:folder` after `:arrival`, at most `:limit`.
const std::string &itemsAfter();
/// What stands in the indexes of fields, of the item `:id`.
const std::string &itemKeys();
const std::string &insertItem();
/// Writes all fields of the item `:id`. An index is touched only where the field changed: of the columns that stand in
/// indexes only those whose bits are set are written.
std::string updateItem(quint32 changedKeys);

// --- Parts

constexpr std::string_view putBodies = "INSERT INTO bodies (item, plain, html) VALUES (:item, :plain, :html)"
                                       " ON CONFLICT (item) DO UPDATE SET plain = excluded.plain, html = excluded.html";
constexpr std::string_view bodies = "SELECT plain, html FROM bodies WHERE item = :item";
constexpr std::string_view putOriginal = "INSERT INTO originals (item, data) VALUES (:item, :data)"
                                         " ON CONFLICT (item) DO UPDATE SET data = excluded.data";
constexpr std::string_view original = "SELECT data FROM originals WHERE item = :item";
constexpr std::string_view setBodyBytes = "UPDATE items SET body_bytes = :bytes WHERE id = :item";
constexpr std::string_view setOriginalBytes = "UPDATE items SET original_bytes = :bytes WHERE id = :item";
constexpr std::string_view sumAttachments =
    "UPDATE items SET (attachment_count, attachment_bytes) ="
    " (SELECT count(*), coalesce(sum(size), 0) FROM attachments WHERE item = items.id) WHERE id = :item";

constexpr std::string_view properties =
    "SELECT name_key, name, type, value, position FROM properties WHERE item = :item ORDER BY position";
constexpr std::string_view propertyKey = "SELECT value_key FROM properties WHERE item = :item AND name_key = :name";
constexpr std::string_view putProperty =
    "INSERT INTO properties (item, name_key, position, name, type, value, value_key, folder, arrival)"
    " VALUES (:item, :name_key, :position, :name, :type, :value, :value_key, :folder, :arrival)"
    " ON CONFLICT (item, name_key) DO UPDATE SET name = excluded.name, type = excluded.type, value = excluded.value,"
    " value_key = excluded.value_key";
constexpr std::string_view removeProperty = "DELETE FROM properties WHERE item = :item AND name_key = :name_key";

constexpr std::string_view attachments =
    "SELECT id, type, file_name, display_name, mime_type, content_id, size, position FROM attachments"
    " WHERE item = :item ORDER BY position";
constexpr std::string_view attachmentData = "SELECT data FROM attachments WHERE id = :id";
constexpr std::string_view addAttachment =
    "INSERT INTO attachments (id, item, position, type, file_name, display_name, mime_type, content_id, size, data)"
    " VALUES (:id, :item, :position, :type, :file_name, :display_name, :mime_type, :content_id, :size, :data)";
constexpr std::string_view saveAttachment =
    "UPDATE attachments SET position = :position, type = :type, file_name = :file_name, display_name = :display_name,"
    " mime_type = :mime_type, content_id = :content_id WHERE id = :id AND item = :item";
constexpr std::string_view removeAttachment = "DELETE FROM attachments WHERE id = :id AND item = :item";

// --- A copy in the same store, everything but the numbers taken over

const std::string &copyItem();
constexpr std::string_view copyBodies =
    "INSERT INTO bodies (item, plain, html) SELECT :copy, plain, html FROM bodies WHERE item = :item";
constexpr std::string_view copyOriginal =
    "INSERT INTO originals (item, data) SELECT :copy, data FROM originals WHERE item = :item";
constexpr std::string_view copyProperties =
    "INSERT INTO properties (item, name_key, position, name, type, value, value_key, folder, arrival)"
    " SELECT :copy, name_key, position, name, type, value, value_key, folder, :arrival FROM properties"
    " WHERE item = :item";
constexpr std::string_view copyAttachment =
    "INSERT INTO attachments (id, item, position, type, file_name, display_name, mime_type, content_id, size, data)"
    " SELECT :copy_id, :copy, position, type, file_name, display_name, mime_type, content_id, size, data"
    " FROM attachments WHERE id = :id";

// --- Moves between stores

constexpr std::string_view noteIncoming =
    "INSERT INTO transfers_in (item, transfer, source, folder) VALUES (:item, :transfer, :source, :folder)";
constexpr std::string_view incoming = "SELECT item, transfer FROM transfers_in WHERE source = :source";
constexpr std::string_view incomingFolder = "SELECT folder FROM transfers_in WHERE item = :item";
constexpr std::string_view isIncoming = "SELECT 1 FROM transfers_in WHERE transfer = :transfer";
constexpr std::string_view revealItem = "UPDATE items SET folder = :folder, arrival = :arrival WHERE id = :id";
constexpr std::string_view dropIncoming = "DELETE FROM transfers_in WHERE item = :item";
constexpr std::string_view noteOutgoing = "INSERT INTO transfers_out (transfer, target) VALUES (:transfer, :target)";
constexpr std::string_view isOutgoing = "SELECT 1 FROM transfers_out WHERE transfer = :transfer";
constexpr std::string_view outgoing = "SELECT transfer FROM transfers_out WHERE target = :target";
constexpr std::string_view dropOutgoing = "DELETE FROM transfers_out WHERE transfer = :transfer";

} // namespace desk::sql

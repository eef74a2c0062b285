/// Writes one item with its parts, inside a transaction of the caller's.
#pragma once

#include "desk/store/connection.h"
#include "desk/store/records.h"

namespace desk {

/// Where a new item is put: its number, its folder (none for a copy in the middle of a move between stores) and
/// arrival.
struct ItemPlace {
    ItemId id = 0;
    std::optional<FolderId> folder;
    qint64 arrival = 0;
};

/// Takes the next `count` numbers of the store and gives the first of them.
qint64 takeNumbers(Connection &connection, qint64 count = 1);

/// Brings properties into the form in which they are kept: the value of the kind that the type says. Fails with
/// `typeMismatch` for a value that is nothing of the kind, `invalidCall` for two properties of one name.
QList<Property> normalized(const QList<Property> &properties);

/// What the parts of a new item weigh, in bytes.
struct Sizes {
    qint32 attachmentCount = 0;
    qint64 bodies = 0;
    qint64 attachments = 0;
    qint64 original = 0;

    /// The size that the item shows (see `ItemRecord::size`).
    [[nodiscard]] qint64 shown() const { return std::max(original, bodies + attachments); }
};

/// REQUIRES: properties normalized; attachments are all new.
Sizes insertItem(Connection &connection, const ItemPlace &place, const ItemRecord &fields, const ItemParts &parts);

/// Writes the fields and the given parts over what stands. REQUIRES: the item stands; properties normalized.
void updateItem(Connection &connection, const ItemRecord &fields, const ItemParts &parts);

/// Notes that an item leaves the folder; gives the folder's number of removals since.
qint64 noteRemoval(Connection &connection, FolderId folder);

/// Deletes an item that stands in the folder, with its parts; gives the folder's number of removals since.
qint64 removeStanding(Connection &connection, ItemId item, FolderId folder);

} // namespace desk

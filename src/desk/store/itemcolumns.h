/// How the fields of `ItemRecord` stand in the table `items`: the one list that reading, writing and look-ups share.
#pragma once

#include "desk/store/connection.h"
#include "desk/store/records.h"

namespace desk {

struct ItemColumn {
    Field field;
    std::string_view name;
    std::variant<QString ItemRecord::*, qint32 ItemRecord::*, bool ItemRecord::*, DateTime ItemRecord::*> member;
    /// The column of the folded key that stands beside an indexed field; there is an index on folder, key and arrival.
    std::string_view keyName;
    /// Whether a list can be in its order: the index leaves nothing out, and stands on the field itself where that has
    /// no key.
    bool isSortable = false;

    [[nodiscard]] bool isIndexed() const { return !keyName.empty(); }
    [[nodiscard]] bool hasIndex() const { return isIndexed() || isSortable; }
    /// What stands in the index.
    [[nodiscard]] std::string_view indexedName() const { return isIndexed() ? keyName : name; }
};

/// In the order of the fields.
std::span<const ItemColumn> itemColumns();
const ItemColumn &itemColumn(Field field);

/// The field's value in a record, as a value and as the database holds it.
Value fieldOf(const ItemRecord &record, const ItemColumn &column);
QVariant storedField(const ItemRecord &record, const ItemColumn &column);
/// What stands in the index of a field that has one, as the database holds it.
QVariant storedKey(const ItemRecord &record, const ItemColumn &column);

/// An item's size, in a select from `items AS i`.
constexpr std::string_view sizeColumn =
    "CASE WHEN i.original_bytes > i.body_bytes + i.attachment_bytes THEN i.original_bytes"
    " ELSE i.body_bytes + i.attachment_bytes END";

/// The columns of a select from `items AS i` that `recordFrom` reads.
const std::string &recordColumns();
ItemRecord recordFrom(const Row &row, const QByteArray &storeTag);

} // namespace desk

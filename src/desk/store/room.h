/// The room on its disk that a store leaves free.
///
/// Where the disk fills up while an item is being made and marked in several saves, what was begun must be undone, and
/// undoing writes as well. So new items are refused first, then what makes an item larger; a deletion, a move and a
/// save that makes an item smaller are never refused before the disk itself refuses.
#pragma once

#include "desk/store/records.h"
#include "platform/value/failure.h"

namespace desk {

enum class Growth { NewItem, Change };

/// Whether so many bytes may be written. True where the machine can't tell.
[[nodiscard]] bool hasRoom(const QString &storePath, Growth growth, qint64 bytes);

/// What is told where there is none: `noDiskSpace`.
Failure noRoom(const QString &storePath);

/// About the bytes that a new item, or the given parts of one, take.
qint64 weightOf(const ItemRecord &fields);
qint64 weightOf(const ItemParts &parts);

} // namespace desk

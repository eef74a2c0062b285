/// Filters put to a store.
#pragma once

#include "desk/content/filter.h"
#include "desk/store/store.h"

namespace desk {

/// The first item of a folder, by arrival, that meets the filter and arrived after `arrival`. What the filter asks to
/// be equal is looked up by the store; the rest is compared item by item.
std::optional<ItemRecord> findItem(Store &store, FolderId folder, const Filter &filter, qint64 arrival = 0);

} // namespace desk

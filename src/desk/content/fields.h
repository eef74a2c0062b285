/// The standard fields of items under the names that the object model, filters and lists use.
#pragma once

#include "desk/store/records.h"

namespace desk {

struct StandardField {
    const char *name;
    Value (*read)(const ItemRecord &record);
    /// The store's name for it; none for what the store keeps itself.
    std::optional<Field> field;
};

/// All of them, in the order in which an item is shown.
const std::vector<StandardField> &standardFields();

/// By name without regard to case and blanks; null for a name that is none.
const StandardField *standardField(const QString &name);

} // namespace desk

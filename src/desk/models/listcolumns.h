/// The columns that a list of items can show.
#pragma once

#include "desk/store/records.h"

#include <QVariant>

#include <span>

namespace desk {

struct ListColumn {
    const char *title;
    QVariant (*value)(const ItemRecord &);
    /// Whether the list can be in its order, and the field that it is ordered by then; none for that of arrival.
    bool isSortable = false;
    std::optional<Field> field{};
};

std::span<const ListColumn> listColumns();

/// Places in `listColumns`.
enum class ListColumnPlace : int { Importance, Attachments, Sender, Subject, Received, Size };

} // namespace desk

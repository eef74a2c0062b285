#include "desk/store/connection.h"
#include "desk/store/itemcolumns.h"
#include "desk/store/search.h"
#include "desk/store/store.h"

namespace desk {

std::optional<ItemRecord> Store::find(FolderId folder, const QList<Condition> &conditions, qint64 arrival) {
    const Search search(*m_connection, folder, conditions, arrival);
    if (search.isHopeless())
        return std::nullopt;
    std::optional<ItemRecord> found;
    m_connection->each(search.sql(), search.binds(), [&](const Row &row) {
        ItemRecord record = recordFrom(row, m_tag);
        if (!search.holds(record))
            return true;
        found = std::move(record);
        return false;
    });
    return found;
}

} // namespace desk

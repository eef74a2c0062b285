#include "desk/objects/selection.h"

#include "desk/objects/item.h"
#include "desk/objects/session.h"

namespace desk::objects {

Selection::Selection(std::weak_ptr<desk::Session> session, Store &store, QList<ItemId> items)
    : SessionObject(std::move(session)), m_store(&store), m_items(std::move(items)) {}

Value Selection::Item(const Value &Index) {
    const std::shared_ptr<desk::Session> open = session();
    const auto record = m_store->item(m_items.at(positionFrom(Index, m_items.size())));
    if (!record)
        throw Failure(failures::itemGone);
    return automation::wrap(open->item(*m_store, *record));
}

} // namespace desk::objects

#include "desk/objects/itemwatch.h"

#include "desk/objects/item.h"
#include "desk/objects/items.h"
#include "desk/objects/mapifolder.h"
#include "desk/objects/session.h"

#include <QScopeGuard>

namespace desk {

void ItemWatch::add(const std::shared_ptr<objects::Items> &items) {
    const auto known = std::any_of(m_watchers.begin(), m_watchers.end(),
                                   [&](const Watcher &each) { return each.items.lock() == items; });
    if (!known)
        m_watchers.push_back({items, items->folder()->store().lastArrival()});
}

void ItemWatch::look() {
    m_isStale = true;
    if (m_isTelling)
        return;
    m_isTelling = true;
    const auto done = qScopeGuard([this] { m_isTelling = false; });
    while (std::exchange(m_isStale, false)) {
        for (const News &news : collect())
            tell(news);
    }
}

void ItemWatch::poll() {
    bool isChanged = false;
    for (Store *store : m_session.stores())
        isChanged |= store->changed();
    if (isChanged)
        look();
}

std::vector<ItemWatch::News> ItemWatch::collect() {
    std::erase_if(m_watchers, [](const Watcher &watcher) { return watcher.items.expired(); });
    std::vector<News> all;
    for (Watcher &watcher : m_watchers) {
        const std::shared_ptr<objects::Items> items = watcher.items.lock();
        const objects::MAPIFolder &folder = *items->folder();
        for (const ItemRecord &item : folder.store().itemsArrivedAfter(folder.id(), watcher.arrival)) {
            watcher.arrival = item.arrival;
            m_isStale = true;
            all.push_back({items, item.id});
        }
    }
    return all;
}

void ItemWatch::tell(const News &news) {
    const std::shared_ptr<objects::Items> items = news.items.lock();
    if (!items)
        return;
    const objects::MAPIFolder &folder = *items->folder();
    const std::optional<ItemRecord> item = folder.store().item(news.item);
    if (item && item->folder == folder.id())
        Q_EMIT items->ItemAdd(automation::wrap(m_session.item(folder.store(), *item)));
}

} // namespace desk

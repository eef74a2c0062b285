#include "desk/objects/itemwatch.h"

#include "desk/content/storechanges.h"
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
    const std::optional<Failure> failure = Attempt([&] {
        while (!isEnding() && (std::exchange(m_isStale, false) || !m_news.empty())) {
            collect();
            while (!m_news.empty() && !isEnding())
                tellNext();
        }
    });
    // Whoever saved an item is not to take this for a failed save; the next poll looks again.
    if (failure)
        m_isStale = true;
}

bool ItemWatch::isEnding() const { return m_session.isEnding && m_session.isEnding(); }

void ItemWatch::poll() {
    if (m_session.changes().look() || m_isStale)
        look();
}

void ItemWatch::collect() {
    std::erase_if(m_watchers, [](const Watcher &watcher) { return watcher.items.expired(); });
    for (Watcher &watcher : m_watchers) {
        const std::shared_ptr<objects::Items> items = watcher.items.lock();
        const objects::MAPIFolder &folder = *items->folder();
        for (const ItemRecord &item : folder.store().itemsArrivedAfter(folder.id(), watcher.arrival)) {
            watcher.arrival = item.arrival;
            // There may be more than one page.
            m_isStale = true;
            m_news.push_back({items, item.id});
        }
    }
}

void ItemWatch::tellNext() {
    const std::shared_ptr<objects::Items> items = m_news.front().items.lock();
    std::optional<ItemRecord> item;
    if (items)
        item = items->folder()->store().item(m_news.front().item);
    m_news.pop_front();
    if (item && item->folder == items->folder()->id())
        Q_EMIT items->ItemAdd(automation::wrap(m_session.item(items->folder()->store(), *item)));
}

} // namespace desk

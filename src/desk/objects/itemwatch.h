/// The watch on new items: tells `Items` objects what has come into their folders.
#pragma once

#include "desk/store/store.h"

#include <deque>

namespace desk {

class Session;

namespace objects {
class Items;
}

/// Each watcher hears of each item once, in order of arrival, whether it was put there by this process or another. An
/// item that has left the folder again before its turn came is passed over.
///
/// Events are raised one after the other: what arrives while a handler runs is told when that handler has returned, so
/// that no watcher is entered for an item while it is busy with another.
class ItemWatch {
  public:
    explicit ItemWatch(Session &session) : m_session(session) {}

    /// Begins to tell a watcher what arrives from here on.
    void add(const std::shared_ptr<objects::Items> &items);
    /// Tells what has come. Called after each own change, and by `poll`. What can't be read is looked for again by the
    /// next `poll`.
    void look();
    /// Looks where a store was written to, by another process or this one.
    void poll();

  private:
    struct Watcher {
        std::weak_ptr<objects::Items> items;
        qint64 arrival;
    };
    struct News {
        std::weak_ptr<objects::Items> items;
        ItemId item;
    };

    void collect();
    void tellNext();
    /// A host that ends begins nothing new: what is not told now lies there for whoever looks next.
    [[nodiscard]] bool isEnding() const;

    Session &m_session;
    std::vector<Watcher> m_watchers;
    /// Found and not told yet.
    std::deque<News> m_news;
    bool m_isTelling = false;
    bool m_isStale = false;
};

} // namespace desk

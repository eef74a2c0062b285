/// The items of folders by position: what makes the n-th item of a folder of any size a matter of constant time, and
/// the usual walk from the last to the first a walk over memory.
///
/// Remembers, for each folder asked about, its count and the items at both ends as far as they were needed. What other
/// connections and this one do is noticed at the next question: arrivals extend the upper end; a removal by somebody
/// else drops what is remembered of that folder, a removal of the owner's own is taken out in place (`removed`).
#pragma once

#include "desk/store/connection.h"
#include "desk/store/records.h"

#include <deque>

namespace desk {

class FolderOrder {
  public:
    /// \param countStatement  the one that tells how many items a folder has.
    FolderOrder(Connection &connection, std::string_view countStatement)
        : m_connection(connection), m_countStatement(countStatement) {}

    /// The item at a position counted from 1; 0 beyond the ends. Fails with `notFound` for an unknown folder.
    ItemId nth(FolderId folder, qint64 position);

    /// The owner committed arrivals.
    void added() { ++m_ownChanges; }
    /// The owner took an item out of a folder and committed; `removals` is the folder's number of removals since.
    void removed(FolderId folder, qint64 arrival, qint64 removals);

  private:
    struct Entry {
        qint64 arrival = 0;
        ItemId item = 0;
    };
    struct Known {
        qint64 dataVersion = -1;
        qint64 ownChanges = -1;
        qint64 removals = -1;
        qint64 count = 0;
        /// Positions 1 and up, and positions up to `count`, both ascending by arrival. They never overlap: when they
        /// meet, everything is known.
        std::deque<Entry> front;
        std::deque<Entry> back;
    };

    Known &upToDate(FolderId folder);
    void reload(FolderId folder, Known &known);
    void appendArrivals(FolderId folder, Known &known);
    void growFront(FolderId folder, Known &known, qint64 size);
    void growBack(FolderId folder, Known &known, qint64 size);

    Connection &m_connection;
    std::string_view m_countStatement;
    std::map<FolderId, Known> m_known;
    qint64 m_ownChanges = 0;
};

} // namespace desk

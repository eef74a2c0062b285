#include "desk/store/folderorder.h"

#include "desk/store/statements.h"
#include "platform/value/failure.h"

#include <limits>

namespace desk {

namespace {

/// The least number of positions that is read at once. What is read doubles with what is known.
constexpr qint64 smallestChunk = 256;
constexpr qint64 beforeAll = 0;
constexpr qint64 afterAll = std::numeric_limits<qint64>::max();

} // namespace

ItemId FolderOrder::nth(FolderId folder, qint64 position) {
    Known &known = upToDate(folder);
    if (position < 1 || position > known.count)
        return 0;
    const qint64 fromEnd = known.count - position;
    if (position > std::ssize(known.front) && fromEnd >= std::ssize(known.back)) {
        if (position < fromEnd)
            growFront(folder, known, position);
        else
            growBack(folder, known, fromEnd + 1);
    }
    if (position <= std::ssize(known.front))
        return known.front[static_cast<std::size_t>(position - 1)].item;
    if (fromEnd < std::ssize(known.back))
        return known.back[static_cast<std::size_t>(std::ssize(known.back) - 1 - fromEnd)].item;
    // Somebody took items away between the two looks.
    return 0;
}

void FolderOrder::removed(FolderId folder, qint64 arrival, qint64 removals) {
    const auto found = m_known.find(folder);
    if (found == m_known.end())
        return;
    Known &known = found->second;
    const auto takeFrom = [arrival](std::deque<Entry> &entries) {
        const auto at = std::ranges::lower_bound(entries, arrival, {}, &Entry::arrival);
        if (at != entries.end() && at->arrival == arrival)
            entries.erase(at);
    };
    // Unless this is the next removal after the last one known, others took items away too. An arrival that is newer
    // than all that is known was never counted.
    const bool isCounted =
        known.removals + 1 == removals && !known.back.empty() && arrival <= known.back.back().arrival;
    if (!isCounted) {
        m_known.erase(found);
        return;
    }
    takeFrom(known.front);
    takeFrom(known.back);
    --known.count;
    known.removals = removals;
    if (known.back.empty())
        m_known.erase(found);
}

FolderOrder::Known &FolderOrder::upToDate(FolderId folder) {
    // Asked before the reads, so that a commit between them is noticed at the next question.
    const qint64 dataVersion = m_connection.dataVersion();
    Known &known = m_known[folder];
    if (known.dataVersion == dataVersion && known.ownChanges == m_ownChanges)
        return known;
    try {
        Transaction reading(m_connection, Transaction::Kind::Read);
        const std::optional<QVariant> removals = m_connection.value(sql::removals, {{"id", folder}});
        if (!removals)
            throw Failure(failures::notFound, QStringLiteral("The folder no longer exists; somebody removed it."));
        if (known.removals == removals->toLongLong()) {
            appendArrivals(folder, known);
        } else {
            reload(folder, known);
            known.removals = removals->toLongLong();
        }
        reading.commit();
    } catch (const Failure &) {
        m_known.erase(folder);
        throw;
    }
    known.dataVersion = dataVersion;
    known.ownChanges = m_ownChanges;
    return known;
}

/// Invariant: in a folder with items the last of them is known, so that arrivals can be told from it.
void FolderOrder::reload(FolderId folder, Known &known) {
    known.front.clear();
    known.back.clear();
    known.count = m_connection.value(m_countStatement, {{"id", folder}}).value_or(0).toLongLong();
    growBack(folder, known, 1);
}

void FolderOrder::appendArrivals(FolderId folder, Known &known) {
    const qint64 last = known.back.empty() ? beforeAll : known.back.back().arrival;
    m_connection.each(sql::orderUpwards, {{"folder", folder}, {"arrival", last}, {"limit", afterAll}},
                      [&known](const Row &row) {
                          known.back.push_back({.arrival = row.number(0), .item = row.number(1)});
                          ++known.count;
                      });
}

void FolderOrder::growFront(FolderId folder, Known &known, qint64 size) {
    const qint64 room = known.count - std::ssize(known.back);
    const qint64 wanted = std::min(room, std::max({size, 2 * qint64{std::ssize(known.front)}, smallestChunk}));
    const qint64 last = known.front.empty() ? beforeAll : known.front.back().arrival;
    m_connection.each(
        sql::orderUpwards, {{"folder", folder}, {"arrival", last}, {"limit", wanted - std::ssize(known.front)}},
        [&known](const Row &row) { known.front.push_back({.arrival = row.number(0), .item = row.number(1)}); });
}

void FolderOrder::growBack(FolderId folder, Known &known, qint64 size) {
    const qint64 room = known.count - std::ssize(known.front);
    const qint64 wanted = std::min(room, std::max({size, 2 * qint64{std::ssize(known.back)}, smallestChunk}));
    const qint64 first = known.back.empty() ? afterAll : known.back.front().arrival;
    m_connection.each(
        sql::orderDownwards, {{"folder", folder}, {"arrival", first}, {"limit", wanted - std::ssize(known.back)}},
        [&known](const Row &row) { known.back.push_front({.arrival = row.number(0), .item = row.number(1)}); });
}

} // namespace desk

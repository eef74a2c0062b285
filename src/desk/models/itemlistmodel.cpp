#include "desk/models/itemlistmodel.h"

#include "desk/content/mailboxes.h"
#include "desk/content/storechanges.h"
#include "desk/models/listcolumns.h"
#include "platform/value/failure.h"

#include <QScopeGuard>
#include <QSet>

#include <numeric>

namespace desk {

namespace {

using namespace std::chrono_literals;

constexpr int pageSize = 100;
/// Rows on either side of the ones asked for last that stay known.
constexpr int keptAround = 1000;
constexpr std::size_t mostKnown = 4000;
/// What a filter goes through at once: a few milliseconds.
constexpr int examinedAtOnce = 2000;
constexpr auto retryInterval = 1s;

ListRow rowOf(const ItemList &list, const ItemRecord &record, int position = 0) {
    return {.position = position, .mark = list.markOf(record), .record = record};
}

} // namespace

ItemListModel::ItemListModel(Mailboxes &mailboxes, QObject *parent)
    : QAbstractTableModel(parent), m_mailboxes(mailboxes) {
    m_refreshTimer.setSingleShot(true);
    m_stepTimer.setSingleShot(true);
    connect(&mailboxes.changes(), &StoreChanges::changed, this, &ItemListModel::refresh);
    connect(&m_refreshTimer, &QTimer::timeout, this, &ItemListModel::refresh);
    connect(&m_stepTimer, &QTimer::timeout, this, &ItemListModel::step);
}

ItemListModel::~ItemListModel() = default;

void ItemListModel::show(Store &store, FolderId folder) {
    m_store = &store;
    m_folder = folder;
    startAgain();
}

void ItemListModel::setFilter(const ItemFilter &filter) {
    if (filter == m_filter)
        return;
    m_filter = filter;
    if (m_store)
        startAgain();
}

void ItemListModel::startAgain() {
    beginResetModel();
    begin();
    endResetModel();
}

/// A folder that can't be read is empty until it can.
void ItemListModel::begin() {
    m_stepTimer.stop();
    m_rows.reset(0);
    m_untold.reset();
    m_isMiscounted = false;
    m_sweep = {};
    m_wanted = pageSize;
    m_isComplete = m_filter.isEmpty();
    m_list.emplace(*m_store, m_folder, m_order);
    const std::optional<Failure> failure = Attempt([this] {
        const StoreMoment moment = m_store->moment();
        m_revision = m_store->revision();
        m_lastArrival = m_store->lastArrival();
        const qint64 items = m_store->count(m_folder);
        if (m_filter.isEmpty())
            m_rows.reset(static_cast<int>(items));
        else
            startSweep();
    });
    if (failure && failure->number() != failures::notFound)
        m_refreshTimer.start(retryInterval);
}

void ItemListModel::refresh() {
    if (!m_store || m_isChanging)
        return;
    const std::optional<Failure> failure = Attempt([this] {
        if (m_filter.isEmpty())
            refreshRows();
        else
            startSweep();
    });
    if (!failure)
        return tellUntold();
    if (failure->number() == failures::notFound)
        showNothing();
    else
        m_refreshTimer.start(retryInterval);
}

/// The folder is gone.
void ItemListModel::showNothing() {
    m_sweep.isUnderWay = false;
    if (m_rows.count() == 0)
        return;
    beginResetModel();
    m_rows.reset(0);
    m_isComplete = true;
    endResetModel();
}

// --- What is shown of a row

int ItemListModel::rowCount(const QModelIndex &parent) const { return parent.isValid() ? 0 : m_rows.count(); }

int ItemListModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(listColumns().size());
}

QVariant ItemListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= columnCount())
        return {};
    return QString::fromLatin1(listColumns()[static_cast<std::size_t>(section)].title);
}

QVariant ItemListModel::data(const QModelIndex &index, int role) const {
    constexpr int roles[] = {Qt::DisplayRole, EntryIdRole, UnreadRole, MessageClassRole, FlagStatusRole, ValueRole};
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || std::ranges::find(roles, role) == std::end(roles))
        return {};
    const ItemRecord *record = recordAt(index.row());
    if (!record)
        return {};
    switch (role) {
    case EntryIdRole:
        return record->entryId;
    case UnreadRole:
        return record->unread;
    case MessageClassRole:
        return record->messageClass;
    case FlagStatusRole:
        return record->flagStatus;
    default:
        return listColumns()[static_cast<std::size_t>(index.column())].value(*record);
    }
}

const ItemRecord *ItemListModel::recordAt(int position) const {
    if (!m_rows.at(position))
        Attempt([&] { load(position); });
    ListRow *row = m_rows.at(position);
    if (!row)
        return nullptr;
    if (!row->record)
        Attempt([&] { row->record = m_store->item(row->mark.id); });
    return row->record ? &*row->record : nullptr;
}

void ItemListModel::leaveUntold(int position) const {
    const auto [first, last] = m_untold.value_or(std::pair(position, position));
    m_untold = std::pair(std::min(first, position), std::max(last, position));
    if (!m_refreshTimer.isActive())
        m_refreshTimer.start(0ms);
}

void ItemListModel::tellUntold() {
    if (!m_untold)
        return;
    const auto [first, last] = *std::exchange(m_untold, std::nullopt);
    if (first < m_rows.count())
        Q_EMIT dataChanged(index(first, 0), index(std::min(last, m_rows.count() - 1), columnCount() - 1));
}

/// Reads a page beside the nearest row that is known, or beside an end.
void ItemListModel::load(int position) const {
    if (m_isChanging)
        return leaveUntold(position);
    const StoreMoment moment = m_store->moment();
    if (m_store->revision() != m_revision)
        return leaveUntold(position);

    const std::size_t place = m_rows.placeOf(position);
    const ListRow *previous = place > 0 ? &m_rows.known()[place - 1] : nullptr;
    const ListRow *next = place < m_rows.known().size() ? &m_rows.known()[place] : nullptr;
    const ItemList::End behind = previous ? ItemList::End(previous->mark.key) : std::nullopt;
    const ItemList::End before = next ? ItemList::End(next->mark.key) : std::nullopt;
    const int gapBegin = previous ? previous->position + 1 : 0;
    const int gapEnd = next ? next->position : m_rows.count();
    const int end = std::min(gapEnd, std::max(gapBegin, position - pageSize / 2) + pageSize);
    const int first = std::max(gapBegin, end - pageSize);

    const bool isDownward = first - gapBegin <= gapEnd - end;
    const QList<ItemRecord> records = isDownward ? m_list->after(behind, first - gapBegin, end - first)
                                                 : m_list->before(before, gapEnd - end, end - first);
    ListRows::Rows rows;
    int at = isDownward ? first : end - static_cast<int>(records.size());
    for (const ItemRecord &record : records)
        rows.push_back(rowOf(*m_list, record, at++));
    std::erase_if(rows, [&](const ListRow &row) {
        return (behind && !m_list->precedes(*behind, row.mark.key)) ||
               (before && !m_list->precedes(row.mark.key, *before));
    });
    m_isMiscounted |= std::ssize(rows) != end - first;
    // Where the page reaches what is known, nothing may stand between the two.
    if (!rows.empty() && isDownward && end == gapEnd)
        m_isMiscounted |= m_list->countBetween(rows.back().mark.key, before) != 0;
    if (!rows.empty() && !isDownward && first == gapBegin)
        m_isMiscounted |= m_list->countBetween(behind, rows.front().mark.key) != 0;
    m_rows.learn(std::move(rows));
    if (m_isMiscounted)
        leaveUntold(position);
    keepNear(position);
}

void ItemListModel::keepNear(int position) const {
    if (m_rows.known().size() <= mostKnown)
        return;
    QSet<int> held;
    for (const QModelIndex &index : persistentIndexList())
        held.insert(index.row());
    m_rows.forget([&](const ListRow &row) {
        return std::abs(row.position - position) <= keptAround || held.contains(row.position);
    });
}

// --- A list without a filter

void ItemListModel::refreshRows() {
    std::optional<std::vector<Change>> changes;
    qint64 items = 0;
    {
        const StoreMoment moment = m_store->moment();
        const StoreRevision revision = m_store->revision();
        if (revision == m_revision && !m_isMiscounted)
            return;
        items = m_store->count(m_folder);
        changes = changesTo(items);
        m_revision = revision;
        m_lastArrival = m_store->lastArrival();
        m_isMiscounted = false;
    }
    if (changes)
        return apply(*changes);
    beginResetModel();
    m_rows.reset(static_cast<int>(items));
    endResetModel();
}

std::optional<std::vector<ItemListModel::Change>> ItemListModel::changesTo(qint64 items) const {
    const ListRows::Rows &known = m_rows.known();
    const std::vector<ListRows::Run> runs = m_rows.runs();
    std::vector<Change> ofRuns;
    qint64 unknown = items;
    for (const ListRows::Run &run : runs) {
        const int count = static_cast<int>(run.end - run.begin);
        const int most = count + static_cast<int>(mostKnown);
        const QList<ItemMark> marks = m_list->marks(known[run.begin].mark.key, known[run.end - 1].mark.key, most);
        if (marks.size() == most)
            return std::nullopt;
        Change &change = ofRuns.emplace_back(Change{.position = known[run.begin].position, .count = count});
        for (const ItemMark &mark : marks)
            change.standing.push_back({.mark = mark});
        unknown -= marks.size();
    }
    const std::vector<qint64> between = countsBetweenRuns(runs, unknown);
    if (std::ranges::any_of(between, [](qint64 count) { return count < 0; }))
        return std::nullopt;

    // From the last, so that the positions of those before still hold.
    std::vector<Change> changes;
    int end = m_rows.count();
    for (std::size_t gap = runs.size() + 1; gap-- > 0;) {
        const int begin = gap == 0 ? 0 : known[runs[gap - 1].end - 1].position + 1;
        changes.push_back({.position = end, .unknown = static_cast<int>(between[gap]) - (end - begin)});
        if (gap > 0) {
            end = ofRuns[gap - 1].position;
            changes.push_back(std::move(ofRuns[gap - 1]));
        }
    }
    return changes;
}

/// How many rows there are before, between and behind the runs, `unknown` together. What came is known by its arrival;
/// where more than that happened, all parts but the largest are counted.
std::vector<qint64> ItemListModel::countsBetweenRuns(const std::vector<ListRows::Run> &runs, qint64 unknown) const {
    const ListRows::Rows &known = m_rows.known();
    const auto firstOf = [&](std::size_t run) { return known[runs[run].begin]; };
    const auto lastOf = [&](std::size_t run) { return known[runs[run].end - 1]; };
    std::vector<qint64> before;
    for (std::size_t gap = 0; gap <= runs.size(); ++gap)
        before.push_back((gap == runs.size() ? m_rows.count() : firstOf(gap).position) -
                         (gap == 0 ? 0 : lastOf(gap - 1).position + 1));
    if (runs.empty())
        return {unknown};

    std::vector<qint64> now = before;
    const QList<ItemRecord> arrived = m_store->itemsArrivedAfter(m_folder, m_lastArrival, pageSize);
    for (const ItemRecord &item : arrived) {
        const ItemKey key = m_list->keyOf(item);
        std::size_t gap = 0;
        while (gap < runs.size() && !m_list->precedes(key, firstOf(gap).mark.key))
            ++gap;
        if (gap == 0 || m_list->precedes(lastOf(gap - 1).mark.key, key))
            ++now[gap];
    }
    const auto sum = std::accumulate(now.begin(), now.end(), qint64{0});
    if (!m_isMiscounted && arrived.size() < pageSize && sum == unknown)
        return now;

    const auto largest = static_cast<std::size_t>(std::ranges::max_element(before) - before.begin());
    now[largest] = unknown;
    for (std::size_t gap = 0; gap <= runs.size(); ++gap) {
        if (gap == largest)
            continue;
        now[gap] = m_list->countBetween(gap == 0 ? ItemList::End() : ItemList::End(lastOf(gap - 1).mark.key),
                                        gap == runs.size() ? ItemList::End() : ItemList::End(firstOf(gap).mark.key));
        now[largest] -= now[gap];
    }
    return now;
}

void ItemListModel::apply(const std::vector<Change> &changes) {
    m_isChanging = true;
    const auto done = qScopeGuard([this] { m_isChanging = false; });
    for (const Change &change : changes) {
        if (change.unknown > 0) {
            beginInsertRows({}, change.position, change.position + change.unknown - 1);
            m_rows.insertUnknown(change.position, change.unknown);
            endInsertRows();
        } else if (change.unknown < 0) {
            beginRemoveRows({}, change.position + change.unknown, change.position - 1);
            m_rows.remove(change.position + change.unknown, -change.unknown);
            endRemoveRows();
        }
        if (change.count > 0)
            replace(change.position, change.count, change.standing);
    }
}

void ItemListModel::replace(int position, int count, const std::vector<ListRow> &standing) {
    const auto done = qScopeGuard([this, before = std::exchange(m_isChanging, true)] { m_isChanging = before; });
    QSet<ItemId> stay;
    for (const ListRow &row : standing)
        stay.insert(row.mark.id);

    QSet<ItemId> kept;
    for (int last = position + count - 1; last >= position; --last) {
        if (const ItemId id = m_rows.at(last)->mark.id; stay.contains(id)) {
            kept.insert(id);
            continue;
        }
        int first = last;
        while (first > position && !stay.contains(m_rows.at(first - 1)->mark.id))
            --first;
        beginRemoveRows({}, first, last);
        m_rows.remove(first, last - first + 1);
        endRemoveRows();
        last = first;
    }

    int at = position;
    for (const ListRow &row : standing) {
        if (!kept.contains(row.mark.id))
            continue;
        int from = at;
        while (m_rows.at(from)->mark.id != row.mark.id)
            ++from;
        if (from != at) {
            beginMoveRows({}, from, from, {}, at);
            m_rows.move(from, at);
            endMoveRows();
        }
        ++at;
    }

    at = position;
    for (auto row = standing.begin(); row != standing.end();) {
        if (kept.contains(row->mark.id)) {
            ListRow &known = *m_rows.at(at);
            const bool isOther = known.mark.version != row->mark.version;
            known.mark = row->mark;
            if (isOther) {
                known.record = row->record;
                Q_EMIT dataChanged(index(at, 0), index(at, columnCount() - 1));
            }
            ++row;
            ++at;
            continue;
        }
        const auto end =
            std::find_if(row, standing.end(), [&](const ListRow &each) { return kept.contains(each.mark.id); });
        const int come = static_cast<int>(end - row);
        beginInsertRows({}, at, at + come - 1);
        m_rows.insert(at, ListRows::Rows(row, end));
        endInsertRows();
        at += come;
        row = end;
    }
}

// --- Order, and the place of an item

void ItemListModel::sort(int column, Qt::SortOrder order) {
    if (column < 0 || column >= columnCount() || !listColumns()[static_cast<std::size_t>(column)].isSortable)
        return;
    const ItemOrder wanted{.field = listColumns()[static_cast<std::size_t>(column)].field,
                           .isDescending = order == Qt::DescendingOrder};
    if (wanted == m_order)
        return;
    if (!m_store) {
        m_order = wanted;
    } else if (!m_filter.isEmpty()) {
        m_order = wanted;
        startAgain();
    } else {
        setOrder(wanted);
    }
}

void ItemListModel::setOrder(const ItemOrder &order) {
    refresh();
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList held = persistentIndexList();
    QHash<ItemId, int> followed;
    for (const QModelIndex &index : held)
        if (const ListRow *row = m_rows.at(index.row()))
            followed.insert(row->mark.id, index.row());

    m_order = order;
    m_list.emplace(*m_store, m_folder, m_order);
    m_rows.reset(m_rows.count());
    QHash<int, int> moved;
    Attempt([&] {
        const StoreMoment moment = m_store->moment();
        m_isMiscounted = m_store->revision() != m_revision;
        ListRows::Rows rows = standingRows(followed.keys());
        for (const ListRow &row : rows)
            moved.insert(followed[row.mark.id], row.position);
        m_rows.learn(std::move(rows));
    });
    for (const QModelIndex &from : held) {
        const auto to = moved.constFind(from.row());
        changePersistentIndex(from, to == moved.cend() ? QModelIndex() : index(*to, from.column()));
    }
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
    if (m_isMiscounted)
        m_refreshTimer.start(0ms);
}

/// The items' rows in the present order: one walk along the index, however many there are.
ListRows::Rows ItemListModel::standingRows(const QList<ItemId> &items) const {
    ListRows::Rows rows;
    for (const ItemId id : items)
        if (const std::optional<ItemRecord> item = m_store->item(id); item && item->folder == m_folder)
            rows.push_back(rowOf(*m_list, *item));
    std::ranges::sort(rows, [this](const ListRow &left, const ListRow &right) {
        return m_list->precedes(left.mark.key, right.mark.key);
    });
    ItemList::End before;
    int position = -1;
    for (ListRow &row : rows) {
        position += 1 + static_cast<int>(m_list->countBetween(before, row.mark.key));
        row.position = position;
        before = row.mark.key;
    }
    std::erase_if(rows, [this](const ListRow &row) { return row.position >= m_rows.count(); });
    return rows;
}

QModelIndex ItemListModel::indexOf(const QString &entryId) {
    if (!m_store)
        return {};
    refresh();
    const std::optional<ItemRecord> item =
        AttemptOr([&] { return m_store->itemByEntryId(entryId); }, std::optional<ItemRecord>());
    if (!item || item->folder != m_folder)
        return {};
    const auto known = std::ranges::find(m_rows.known(), item->id, [](const ListRow &row) { return row.mark.id; });
    if (known != m_rows.known().end())
        return index(known->position, 0);
    const int position = m_filter.isEmpty() ? AttemptOr([&] { return positionOf(*item); }, -1) : -1;
    return position < 0 ? QModelIndex() : index(position, 0);
}

/// Makes the row known, so that whoever holds it holds the item.
int ItemListModel::positionOf(const ItemRecord &record) {
    const StoreMoment moment = m_store->moment();
    if (m_store->revision() != m_revision)
        return -1;
    const auto position = static_cast<int>(m_list->countBetween(std::nullopt, m_list->keyOf(record)));
    if (position >= m_rows.count() || m_rows.at(position))
        return -1;
    ListRows::Rows rows;
    rows.push_back(rowOf(*m_list, record, position));
    m_rows.learn(std::move(rows));
    return position;
}

// --- A list with a filter

bool ItemListModel::canFetchMore(const QModelIndex &parent) const { return !parent.isValid() && !m_isComplete; }

void ItemListModel::fetchMore(const QModelIndex &parent) {
    if (!canFetchMore(parent))
        return;
    m_wanted = m_rows.count() + pageSize;
    if (!std::exchange(m_sweep.isUnderWay, true))
        m_stepTimer.start(0ms);
}

void ItemListModel::startSweep() {
    if (m_sweep.isUnderWay || m_store->revision() == m_sweep.revision)
        return;
    m_sweep.at.reset();
    m_sweep.revision = m_store->revision();
    m_sweep.isUnderWay = true;
    m_stepTimer.start(0ms);
}

void ItemListModel::step() {
    if (!m_store || m_filter.isEmpty() || !m_sweep.isUnderWay)
        return;
    FoundItems found;
    const std::optional<Failure> failure = Attempt([&] {
        const StoreMoment moment = m_store->moment();
        static_cast<void>(m_store->countedFolder(m_folder));
        found = m_list->search(m_filter, m_sweep.at, examinedAtOnce);
    });
    if (failure) {
        if (failure->number() == failures::notFound)
            showNothing();
        else
            m_stepTimer.start(retryInterval);
        return;
    }
    // The rows stand next to each other, in the order of the list.
    const auto firstBehind = [this](const ItemList::End &end) {
        return std::ranges::partition_point(
            m_rows.known(), [&](const ListRow &row) { return end && !m_list->precedes(*end, row.mark.key); });
    };
    const auto &known = m_rows.known();
    const auto begin = firstBehind(m_sweep.at);
    const auto end = found.isEnd ? known.end() : firstBehind(found.upTo);
    std::vector<ListRow> standing;
    for (const ItemRecord &record : std::as_const(found.items))
        standing.push_back({.mark = m_list->markOf(record)});
    replace(static_cast<int>(begin - known.begin()), static_cast<int>(end - begin), standing);

    m_sweep.at = found.upTo;
    if (found.isEnd) {
        m_isComplete = true;
        m_sweep.isUnderWay = false;
    } else {
        if (!m_sweep.frontier || m_list->precedes(*m_sweep.frontier, *found.upTo))
            m_sweep.frontier = found.upTo;
        const bool isAtFrontier = !m_list->precedes(*found.upTo, *m_sweep.frontier);
        m_sweep.isUnderWay = m_isComplete || !isAtFrontier || m_rows.count() < m_wanted;
    }
    if (m_sweep.isUnderWay)
        m_stepTimer.start(0ms);
    else
        Attempt([this] { startSweep(); });
}

} // namespace desk

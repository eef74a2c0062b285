#include "desk/store/itemlist.h"

#include "desk/store/connection.h"
#include "desk/store/itemcolumns.h"
#include "desk/store/storedtext.h"
#include "platform/value/failure.h"

#include <deque>

namespace desk {

namespace {

ItemKey keyFrom(const QVariant &stored, qint64 arrival) {
    switch (stored.typeId()) {
    case QMetaType::QString:
        return {.kind = ItemKey::Kind::Text, .bytes = stored.toString().toUtf8(), .arrival = arrival};
    case QMetaType::QByteArray:
        return {.kind = ItemKey::Kind::Bytes, .bytes = stored.toByteArray(), .arrival = arrival};
    default:
        return {.number = stored.toDouble(), .arrival = arrival};
    }
}

QVariant storedKeyOf(const ItemKey &key) {
    switch (key.kind) {
    case ItemKey::Kind::Text:
        return QString::fromUtf8(key.bytes);
    case ItemKey::Kind::Bytes:
        return key.bytes.isNull() ? QByteArrayLiteral("") : key.bytes;
    case ItemKey::Kind::Number:
        break;
    }
    return key.number;
}

QStringList wordsOf(const ItemFilter &filter) { return foldedText(filter.text).split(u' ', Qt::SkipEmptyParts); }

/// The words' test in full: what the statement lets through may be a long text, of which the key holds a part.
bool holds(const QStringList &words, const ItemRecord &record) {
    const QString subject = foldedText(record.subject);
    const QString sender = foldedText(record.senderName);
    return std::ranges::all_of(words,
                               [&](const QString &word) { return subject.contains(word) || sender.contains(word); });
}

/// Lets through a key that holds the parameter's text, or can't be asked: shortened, or kept as bytes.
std::string mayHold(const std::string &key, const std::string &parameter) {
    return "instr(i." + key + ", " + parameter + ") > 0 OR length(i." + key +
           ") = " + std::to_string(shortenedKeyLength) + " OR typeof(i." + key + ") = 'blob'";
}

} // namespace

ItemList::ItemList(Store &store, FolderId folder, const ItemOrder &order)
    : m_store(&store), m_folder(folder), m_order(order) {
    if (!order.field)
        return;
    const ItemColumn &column = itemColumn(*order.field);
    if (!column.isSortable)
        throw Failure(failures::invalidCall, QStringLiteral("Lists are not kept in the order of this column; choose "
                                                            "subject, sender or moment of receipt."));
    m_column = "i." + std::string(column.indexedName());
}

std::string ItemList::test(Side side, const ItemKey &key, bool isIncluded, std::vector<Bind> &binds) const {
    const bool isGreater = (side == Side::After) != m_order.isDescending;
    const std::string compared = std::string(isGreater ? " >" : " <") + (isIncluded ? "= " : " ");
    const bool isAfter = side == Side::After;
    binds.push_back({isAfter ? "after_arrival" : "before_arrival", key.arrival});
    const std::string arrival = isAfter ? ":after_arrival" : ":before_arrival";
    if (m_column.empty())
        return " AND i.arrival" + compared + arrival;
    binds.push_back({isAfter ? "after_key" : "before_key", storedKeyOf(key)});
    return " AND (" + m_column + ", i.arrival)" + compared + "(" + (isAfter ? ":after_key" : ":before_key") + ", " +
           arrival + ")";
}

std::string ItemList::ordered(Side side) const {
    const std::string direction = (side == Side::After) == m_order.isDescending ? " DESC" : "";
    return " ORDER BY " + (m_column.empty() ? "" : m_column + direction + ", ") + "i.arrival" + direction;
}

std::string ItemList::pageStatement(Side side, const End &item, std::vector<Bind> &binds) const {
    return "SELECT " + recordColumns() + " FROM items AS i WHERE i.folder = :folder" +
           (item ? test(side, *item, false, binds) : std::string()) + ordered(side) + " LIMIT :limit OFFSET :skip";
}

std::string ItemList::marksStatement(const ItemKey &first, const ItemKey &last, std::vector<Bind> &binds) const {
    return "SELECT i.id, i.version, i.arrival" + (m_column.empty() ? "" : ", " + m_column) +
           " FROM items AS i WHERE i.folder = :folder" + test(Side::After, first, true, binds) +
           test(Side::Before, last, true, binds) + ordered(Side::After) + " LIMIT :limit";
}

std::string ItemList::countStatement(const End &after, const End &before, std::vector<Bind> &binds) const {
    return "SELECT count(*) FROM items AS i WHERE i.folder = :folder" +
           (after ? test(Side::After, *after, false, binds) : std::string()) +
           (before ? test(Side::Before, *before, false, binds) : std::string());
}

QStringList ItemList::plans(const ItemKey &item) const {
    std::vector<Bind> unused;
    QStringList steps;
    for (const std::string &statement :
         {pageStatement(Side::After, std::nullopt, unused), pageStatement(Side::Before, std::nullopt, unused),
          pageStatement(Side::After, item, unused), pageStatement(Side::Before, item, unused),
          marksStatement(item, item, unused), countStatement(item, std::nullopt, unused),
          countStatement(std::nullopt, item, unused)})
        m_store->m_connection->each("EXPLAIN QUERY PLAN " + statement, {},
                                    [&steps](const Row &row) { steps << row.text(3); });
    return steps;
}

QList<ItemRecord> ItemList::page(Side side, const End &item, qint64 skip, int limit) const {
    std::vector<Bind> binds{{"folder", m_folder}, {"limit", limit}, {"skip", skip}};
    const std::string sql = pageStatement(side, item, binds);
    QList<ItemRecord> found;
    m_store->m_connection->each(sql, binds, [&](const Row &row) { found.append(recordFrom(row, m_store->tag())); });
    return found;
}

QList<ItemRecord> ItemList::after(const End &item, qint64 skip, int limit) const {
    return page(Side::After, item, skip, limit);
}

QList<ItemRecord> ItemList::before(const End &item, qint64 skip, int limit) const {
    QList<ItemRecord> found = page(Side::Before, item, skip, limit);
    std::ranges::reverse(found);
    return found;
}

QList<ItemMark> ItemList::marks(const ItemKey &first, const ItemKey &last, int limit) const {
    std::vector<Bind> binds{{"folder", m_folder}, {"limit", limit}};
    const std::string sql = marksStatement(first, last, binds);
    QList<ItemMark> found;
    m_store->m_connection->each(sql, binds, [&](const Row &row) {
        found.append({.id = row.number(0),
                      .version = row.number(1),
                      .key = keyFrom(m_column.empty() ? QVariant(0.0) : row[3], row.number(2))});
    });
    return found;
}

qint64 ItemList::countBetween(const End &after, const End &before) const {
    std::vector<Bind> binds{{"folder", m_folder}};
    const std::string sql = countStatement(after, before, binds);
    qint64 count = 0;
    m_store->m_connection->each(sql, binds, [&count](const Row &row) { count = row.number(0); });
    return count;
}

FoundItems ItemList::search(const ItemFilter &filter, const End &after, int examined) const {
    const QStringList words = wordsOf(filter);
    FoundItems found;

    std::vector<Bind> place{{"folder", m_folder}, {"skip", examined - 1}};
    const std::string part =
        " FROM items AS i WHERE i.folder = :folder" + (after ? test(Side::After, *after, false, place) : std::string());
    const std::string last = "SELECT i.arrival" + (m_column.empty() ? "" : ", " + m_column) + part +
                             ordered(Side::After) + " LIMIT 1 OFFSET :skip";
    m_store->m_connection->each(last, place, [&](const Row &row) {
        found.upTo = keyFrom(m_column.empty() ? QVariant(0.0) : row[1], row.number(0));
    });
    found.isEnd = !found.upTo;

    std::vector<Bind> binds{{"folder", m_folder}, {"examined", examined}};
    if (after)
        static_cast<void>(test(Side::After, *after, false, binds));
    std::string sql = "SELECT " + recordColumns() + " FROM (SELECT i.id AS candidate" + part + ordered(Side::After) +
                      " LIMIT :examined) CROSS JOIN items AS i ON i.id = candidate WHERE 1";
    if (filter.unreadOnly)
        sql += " AND i.unread <> 0";
    std::deque<std::string> names;
    for (const QString &word : words) {
        const std::string &name = names.emplace_back("word" + std::to_string(names.size()));
        sql += " AND (" + mayHold("subject_key", ":" + name) + " OR " + mayHold("sender_name_key", ":" + name) + ")";
        binds.push_back({name, storedText(word)});
    }
    m_store->m_connection->each(sql, binds, [&](const Row &row) {
        ItemRecord record = recordFrom(row, m_store->tag());
        if (words.isEmpty() || holds(words, record))
            found.items.append(std::move(record));
    });
    std::ranges::sort(found.items, [this](const ItemRecord &left, const ItemRecord &right) {
        return precedes(keyOf(left), keyOf(right));
    });
    return found;
}

ItemKey ItemList::keyOf(const ItemRecord &record) const {
    return m_order.field ? keyFrom(storedKey(record, itemColumn(*m_order.field)), record.arrival)
                         : ItemKey{.arrival = record.arrival};
}

ItemMark ItemList::markOf(const ItemRecord &record) const {
    return {.id = record.id, .version = record.version, .key = keyOf(record)};
}

} // namespace desk

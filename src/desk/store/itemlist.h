/// The items of one folder in an order, by pages: what a list of any length shows, as it comes into view.
///
/// A page is asked for by the item that it stands beside, never by walking to it. Where items are left out between the
/// two (a jump to the middle), the walk is one along an index, without opening the items.
#pragma once

#include "desk/store/store.h"

namespace desk {

/// By a field that is sortable (see itemcolumns.h: subject, sender, moment of receipt), texts without regard to case
/// and those of more than 200 characters by their first 100; equals, and all where there is no field, by arrival.
struct ItemOrder {
    std::optional<Field> field{};
    bool isDescending = false;

    friend bool operator==(const ItemOrder &, const ItemOrder &) = default;
};

/// An item's place in an order, ascending. Keys of one order compare as the order goes.
struct ItemKey {
    /// As the engine puts values: numbers, then texts, then bytes.
    enum class Kind : quint8 { Number, Text, Bytes };
    Kind kind = Kind::Number;
    double number = 0;
    QByteArray bytes{};
    qint64 arrival = 0;

    friend bool operator==(const ItemKey &, const ItemKey &) = default;
    friend bool operator<(const ItemKey &left, const ItemKey &right) {
        return std::tie(left.kind, left.number, left.bytes, left.arrival) <
               std::tie(right.kind, right.number, right.bytes, right.arrival);
    }
};

/// What has to be known of an item to tell whether a list shows it as it stands.
struct ItemMark {
    ItemId id = 0;
    qint64 version = 0;
    ItemKey key{};

    friend bool operator==(const ItemMark &, const ItemMark &) = default;
};

/// What a list leaves out. Every word of the text stands somewhere in subject or sender, without regard to case.
struct ItemFilter {
    QString text{};
    bool unreadOnly = false;

    [[nodiscard]] bool isEmpty() const { return text.trimmed().isEmpty() && !unreadOnly; }
    friend bool operator==(const ItemFilter &, const ItemFilter &) = default;
};

/// What a part of a folder that was gone through holds.
struct FoundItems {
    QList<ItemRecord> items;
    /// The last one that was looked at.
    std::optional<ItemKey> upTo;
    /// Whether the list ends there.
    bool isEnd = false;
};

/// Good for as long as its store. Invariant: an end that is not given is that of the list.
class ItemList {
  public:
    using End = std::optional<ItemKey>;

    /// Fails with `invalidCall` for a field that is not sortable.
    ItemList(Store &store, FolderId folder, const ItemOrder &order);

    [[nodiscard]] Store &store() const { return *m_store; }
    [[nodiscard]] FolderId folder() const { return m_folder; }
    [[nodiscard]] const ItemOrder &order() const { return m_order; }

    /// The items behind one of them, `skip` left out first. In the order of the list.
    [[nodiscard]] QList<ItemRecord> after(const End &item, qint64 skip, int limit) const;
    /// The items before one of them, the nearest `skip` left out. In the order of the list, too.
    [[nodiscard]] QList<ItemRecord> before(const End &item, qint64 skip, int limit) const;
    /// Those from one to another, both included if they still stand, at most `limit`.
    [[nodiscard]] QList<ItemMark> marks(const ItemKey &first, const ItemKey &last, int limit) const;
    /// How many stand between two, neither of them counted. Walks along them in the index.
    [[nodiscard]] qint64 countBetween(const End &after, const End &before) const;
    /// Goes through the next `examined` items and gives those that the filter lets through.
    [[nodiscard]] FoundItems search(const ItemFilter &filter, const End &after, int examined) const;

    /// How the engine goes about pages, marks and counts beside an item, one step each: for those who look after the
    /// indexes.
    [[nodiscard]] QStringList plans(const ItemKey &item) const;

    [[nodiscard]] ItemKey keyOf(const ItemRecord &record) const;
    [[nodiscard]] ItemMark markOf(const ItemRecord &record) const;
    /// Whether the first stands before the second in this list.
    [[nodiscard]] bool precedes(const ItemKey &first, const ItemKey &second) const {
        return m_order.isDescending ? second < first : first < second;
    }

  private:
    enum class Side { After, Before };

    /// The test that an item stands on a side of one; appends what it binds.
    [[nodiscard]] std::string test(Side side, const ItemKey &key, bool isIncluded, std::vector<Bind> &binds) const;
    [[nodiscard]] std::string ordered(Side side) const;
    [[nodiscard]] std::string pageStatement(Side side, const End &item, std::vector<Bind> &binds) const;
    [[nodiscard]] std::string marksStatement(const ItemKey &first, const ItemKey &last, std::vector<Bind> &binds) const;
    [[nodiscard]] std::string countStatement(const End &after, const End &before, std::vector<Bind> &binds) const;
    [[nodiscard]] QList<ItemRecord> page(Side side, const End &item, qint64 skip, int limit) const;

    Store *m_store;
    FolderId m_folder;
    ItemOrder m_order;
    /// "i.subject_key"; empty for the order of arrival.
    std::string m_column;
};

} // namespace desk

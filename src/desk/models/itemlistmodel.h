/// The items of a folder as rows.
#pragma once

#include "desk/models/listrows.h"

#include <QAbstractTableModel>
#include <QTimer>

namespace desk {

class Mailboxes;

/// A list of the items of one folder, in the order of a column, all of them or those that a filter lets through.
///
/// Without a filter, the rows are as many as the store counts, and a page of them is read when a row of it is asked
/// for: by the item that it stands beside where one is known near it, else from the nearer end. Only what is near the
/// rows asked for last is kept, and rows that somebody holds by a persistent index. What was written to the store shows
/// when the mailboxes' `StoreChanges` tells of it: rows that come, go and move are told one by one, so that selection
/// and current row stay on their items. A row whose item can't be told at the moment (the store was written to since)
/// is empty, and told as changed once it can.
///
/// With a filter, rows come as they are found: some with `fetchMore`, the rest in steps by the event loop, each a
/// bounded piece of work. After a change the part that was searched is gone through again, in the same steps.
///
/// An item in a part of the list that nobody has looked at is only counted: when its place in the order changes there,
/// the numbers of rows are set right when that part is next looked at.
class ItemListModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    enum Role {
        EntryIdRole = Qt::UserRole,
        UnreadRole,
        MessageClassRole,
        FlagStatusRole,
        /// What a column sorts or formats by; the same as the display role.
        ValueRole
    };

    explicit ItemListModel(Mailboxes &mailboxes, QObject *parent = nullptr);
    ~ItemListModel() override;

    /// Shows a folder from its beginning. Order and filter stay.
    void show(Store &store, FolderId folder);
    void setFilter(const ItemFilter &filter);
    [[nodiscard]] const ItemFilter &filter() const { return m_filter; }
    [[nodiscard]] const ItemOrder &order() const { return m_order; }

    /// The row of an item; an invalid index where the list doesn't show it. In a filtered list only among the rows
    /// found so far. Counts along the index of the store.
    [[nodiscard]] QModelIndex indexOf(const QString &entryId);

    /// Whether the rows are all there are: always so without a filter.
    [[nodiscard]] bool isComplete() const { return m_isComplete; }
    /// How many rows are known by more than their number.
    [[nodiscard]] std::size_t knownRows() const { return m_rows.known().size(); }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    /// By a column that is sortable; any other leaves the order as it is. The items that somebody holds by a persistent
    /// index stay held.
    void sort(int column, Qt::SortOrder order) override;
    [[nodiscard]] bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;

  private:
    /// Where the search of a filtered list stands.
    struct Sweep {
        /// The last item looked at; none at the beginning.
        ItemList::End at{};
        /// How far any sweep came.
        ItemList::End frontier{};
        bool isUnderWay = false;
        /// The state of the store that it began with.
        StoreRevision revision{};
    };
    /// What has to be done to a part of the rows: rows that are only counted come before `position` or go from there,
    /// or `count` known ones become others.
    struct Change {
        int position = 0;
        int unknown = 0;
        int count = 0;
        std::vector<ListRow> standing{};
    };

    void begin();
    void refresh();
    void startAgain();
    void showNothing();
    void setOrder(const ItemOrder &order);

    // --- What is shown of a row. Reading makes rows known.
    [[nodiscard]] const ItemRecord *recordAt(int position) const;
    void load(int position) const;
    void keepNear(int position) const;
    void leaveUntold(int position) const;
    void tellUntold();

    // --- A list without a filter.
    void refreshRows();
    /// Nothing where it is less work to begin anew. REQUIRES: the store stands still.
    [[nodiscard]] std::optional<std::vector<Change>> changesTo(qint64 items) const;
    [[nodiscard]] std::vector<qint64> countsBetweenRuns(const std::vector<ListRows::Run> &runs, qint64 unknown) const;
    void apply(const std::vector<Change> &changes);
    [[nodiscard]] ListRows::Rows standingRows(const QList<ItemId> &items) const;
    [[nodiscard]] int positionOf(const ItemRecord &record);

    // --- A list with one.
    void startSweep();
    void step();

    /// Makes known rows that stand next to each other those that stand there by now: told as rows that go, move, come
    /// and change.
    void replace(int position, int count, const std::vector<ListRow> &standing);

    Mailboxes &m_mailboxes;
    Store *m_store = nullptr;
    FolderId m_folder = 0;
    ItemOrder m_order{.field = Field::ReceivedAt, .isDescending = true};
    ItemFilter m_filter;
    std::optional<ItemList> m_list;
    /// The state of the store that the rows are of.
    StoreRevision m_revision;
    qint64 m_lastArrival = 0;
    bool m_isComplete = true;
    /// While rows are being changed, nothing is read by position.
    bool m_isChanging = false;
    Sweep m_sweep;
    int m_wanted = 0;
    QTimer m_stepTimer;

    // Reading makes rows known, and finds what has to be set right.
    mutable ListRows m_rows;
    /// Whether rows that are only counted were found to be others than expected.
    mutable bool m_isMiscounted = false;
    /// The first and last row that was asked for and could not be told.
    mutable std::optional<std::pair<int, int>> m_untold;
    mutable QTimer m_refreshTimer;
};

} // namespace desk

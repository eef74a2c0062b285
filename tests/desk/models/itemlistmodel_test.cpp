// The list of a folder's items, as views see it, while items come, go and change.

#include "modelsfixture.h"

#include "desk/models/itemlistmodel.h"
#include "desk/models/listcolumns.h"

#include <QSignalSpy>

#include <random>

namespace desk {

class ItemListModelTest : public ModelsTest {
  protected:
    static constexpr int subjectColumn = static_cast<int>(ListColumnPlace::Subject);
    static constexpr int senderColumn = static_cast<int>(ListColumnPlace::Sender);
    static constexpr int receivedColumn = static_cast<int>(ListColumnPlace::Received);

    void fill(int count) {
        for (int i = 0; i < count; ++i)
            m_store.insert(m_folder, item(QStringLiteral("%1").arg(i, 5, 10, QChar(u'0')), i));
    }
    [[nodiscard]] static QString subject(const ItemListModel &model, int row) {
        return model.index(row, subjectColumn).data().toString();
    }
    /// The subjects as a view that shows all of it reads them.
    [[nodiscard]] static QStringList subjects(const ItemListModel &model) {
        QStringList all;
        for (int row = 0; row < model.rowCount(); ++row)
            all << subject(model, row);
        return all;
    }
    static bool settled(ItemListModel &model) {
        return eventually([&] {
            if (model.canFetchMore({}))
                model.fetchMore({});
            return model.isComplete();
        });
    }
    ItemRecord itemNamed(const QString &subject) { return m_other.find(m_folder, {{Field::Subject, subject}}).value(); }
};

TEST_F(ItemListModelTest, EachOrderShowsEveryItemOnce) {
    m_store.insert(m_folder, item("beta", 3, "Zoe"));
    m_store.insert(m_folder, item("Alpha", 1, "zoe"));
    m_store.insert(m_folder, item("", 4, ""));
    m_store.insert(m_folder, item("gamma", 2, QString(QChar(0xD800))));
    m_store.insert(m_folder, item("Beta", 3, "Ann"));
    ItemListModel model(m_mailboxes);
    const auto tester = watched(model);
    model.show(m_store, m_folder);
    EXPECT_EQ(subjects(model), QStringList({"", "Beta", "beta", "gamma", "Alpha"}));
    struct Case {
        int column;
        Qt::SortOrder order;
        QStringList expected;
    };
    const Case cases[] = {{receivedColumn, Qt::AscendingOrder, {"Alpha", "gamma", "beta", "Beta", ""}},
                          {subjectColumn, Qt::AscendingOrder, {"", "Alpha", "beta", "Beta", "gamma"}},
                          {subjectColumn, Qt::DescendingOrder, {"gamma", "Beta", "beta", "Alpha", ""}},
                          {senderColumn, Qt::AscendingOrder, {"", "Beta", "beta", "Alpha", "gamma"}}};
    for (const Case &each : cases) {
        model.sort(each.column, each.order);
        EXPECT_EQ(subjects(model), each.expected) << each.column;
    }
}

TEST_F(ItemListModelTest, NoMoreThanPagesIsEverKnown) {
    fill(9000);
    ItemListModel model(m_mailboxes);
    const auto tester = watched(model);
    model.show(m_store, m_folder);
    EXPECT_EQ(model.rowCount(), 9000);
    EXPECT_LE(model.knownRows(), 400U);
    EXPECT_EQ(subject(model, 8999), "00000");
    EXPECT_EQ(subject(model, 4500), "04499");
    EXPECT_LE(model.knownRows(), 600U);
    const QPersistentModelIndex held = model.index(10, subjectColumn);
    EXPECT_EQ(held.data().toString(), "08989");
    for (int row = 0; row < 9000; ++row)
        ASSERT_EQ(subject(model, row), QStringLiteral("%1").arg(8999 - row, 5, 10, QChar(u'0')));
    EXPECT_LE(model.knownRows(), 5000U);
    // What is held is known still, so that it stays on its item.
    m_other.remove(itemNamed("08995"));
    m_other.insert(m_folder, item("new", 10000));
    m_other.insert(m_folder, item("new", 10001));
    look();
    EXPECT_EQ(held.row(), 11);
    EXPECT_EQ(held.data().toString(), "08989");
}

/// What others do above, below and beside what is held, seen or not.
TEST_F(ItemListModelTest, WhatIsHeldStaysOnItsItem) {
    fill(1000);
    ItemListModel model(m_mailboxes);
    const auto tester = watched(model);
    model.show(m_store, m_folder);
    QList<QPersistentModelIndex> held;
    for (const int row : {0, 3, 450, 451, 700, 999}) {
        static_cast<void>(subject(model, row));
        held << model.index(row, subjectColumn);
    }
    QStringList names;
    for (const QPersistentModelIndex &each : std::as_const(held))
        names << each.data().toString();
    const std::function<void()> changes[] = {
        [&] { m_other.insert(m_folder, item("newest", 5000)); },
        [&] { m_other.insert(m_folder, item("oldest", -5)); },
        [&] {
            for (int i = 0; i < 300; ++i)
                m_other.insert(m_folder, item(QStringLiteral("between %1").arg(i), i * 3));
        },
        [&] {
            for (const char *gone : {"00998", "00002", "00700", "00547"})
                m_other.remove(itemNamed(gone));
        },
        [&] {
            for (int i = 560; i < 660; ++i)
                m_other.remove(itemNamed(QStringLiteral("00%1").arg(i)));
            m_store.insert(m_folder, item("own", 990));
        },
    };
    for (const auto &change : changes) {
        change();
        look();
        for (qsizetype i = 0; i < held.size(); ++i) {
            ASSERT_TRUE(held[i].isValid());
            EXPECT_EQ(held[i].data().toString(), names[i]);
        }
        EXPECT_EQ(model.rowCount(), m_other.count(m_folder));
        EXPECT_EQ(model.indexOf(itemNamed(names[3]).entryId).row(), held[3].row());
    }
    model.sort(subjectColumn, Qt::AscendingOrder);
    for (qsizetype i = 0; i < held.size(); ++i)
        EXPECT_EQ(held[i].data().toString(), names[i]);
    EXPECT_GT(model.index(held[1].row() + 1, subjectColumn).data().toString(), names[1]);
}

TEST_F(ItemListModelTest, AChangedItemIsToldAndMovesToItsPlace) {
    fill(10);
    ItemListModel model(m_mailboxes);
    const auto tester = watched(model);
    model.show(m_store, m_folder);
    model.sort(subjectColumn, Qt::AscendingOrder);
    static_cast<void>(subjects(model));
    const QPersistentModelIndex held = model.index(8, subjectColumn);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    ItemRecord record = itemNamed("00008");
    record.unread = true;
    record = m_other.save(record);
    EXPECT_FALSE(held.data(ItemListModel::UnreadRole).toBool());
    look();
    EXPECT_TRUE(held.data(ItemListModel::UnreadRole).toBool());
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.first().first().toModelIndex().row(), 8);
    record.subject = "000025";
    m_other.save(record);
    look();
    EXPECT_EQ(held.row(), 3);
    EXPECT_EQ(held.data().toString(), "000025");
    EXPECT_EQ(model.rowCount(), 10);
    EXPECT_EQ(subject(model, 9), "00009");
}

/// Between a commit and the look that tells of it, nothing that is shown is wrong.
TEST_F(ItemListModelTest, ARowThatCannotBeToldYetIsEmptyAndToldLater) {
    fill(1000);
    ItemListModel model(m_mailboxes);
    const auto tester = watched(model);
    model.show(m_store, m_folder);
    static_cast<void>(subject(model, 0));
    m_other.insert(m_folder, item("newest", 5000));
    EXPECT_EQ(subject(model, 500), QString());
    EXPECT_TRUE(eventually([&] { return model.rowCount() == 1001; }));
    EXPECT_EQ(subject(model, 500), "00500");
    EXPECT_EQ(subject(model, 0), "newest");
}

TEST_F(ItemListModelTest, AFilterShowsWhatItLetsThroughAsItChanges) {
    fill(5000);
    for (const char *each : {"Printer on floor 3", "The PRINTER again", "Paper"})
        m_store.insert(m_folder, item(each, 20000, "Bob Müller"));
    ItemRecord buried = item(QString(300, u'x') + "printer", -10);
    buried.unread = true;
    m_store.insert(m_folder, buried);
    ItemListModel model(m_mailboxes);
    const auto tester = watched(model);
    model.show(m_store, m_folder);
    struct Case {
        ItemFilter filter;
        qsizetype expected;
    };
    const Case cases[] = {{{.text = "printer"}, 3},    {{.text = "  MÜLLER floor "}, 1},
                          {{.text = "nothing so"}, 0}, {{.unreadOnly = true}, 1},
                          {{.text = "0499"}, 11},      {{.text = "müller", .unreadOnly = true}, 0},
                          {{.text = "printer"}, 3}};
    for (const Case &each : cases) {
        model.setFilter(each.filter);
        ASSERT_TRUE(settled(model));
        EXPECT_EQ(model.rowCount(), each.expected) << each.filter.text.toStdString();
    }
    EXPECT_EQ(subject(model, 1), "Printer on floor 3");
    const QPersistentModelIndex held = model.index(1, subjectColumn);

    m_other.insert(m_folder, item("a printer that is new", 30000));
    ItemRecord paper = itemNamed("Paper");
    paper.subject = "Paper printer";
    m_other.save(paper);
    m_other.remove(itemNamed("The PRINTER again"));
    look();
    EXPECT_TRUE(eventually([&] { return model.rowCount() == 4; }));
    EXPECT_EQ(held.data().toString(), "Printer on floor 3");
    model.setFilter({});
    EXPECT_EQ(model.rowCount(), 5004);
}

TEST_F(ItemListModelTest, AFolderThatGoesLeavesAnEmptyList) {
    fill(20);
    for (const QString &text : {QString(), QStringLiteral("0")}) {
        const FolderId folder = m_store.addFolder({.parent = m_folder, .name = "f" + text}).id;
        m_store.insert(folder, item("0", 0));
        ItemListModel model(m_mailboxes);
        const auto tester = watched(model);
        model.setFilter({.text = text});
        model.show(m_store, folder);
        ASSERT_TRUE(settled(model));
        EXPECT_EQ(model.rowCount(), 1);
        m_other.removeFolder(folder);
        look();
        EXPECT_TRUE(eventually([&] { return model.rowCount() == 0; }));
        model.show(m_store, m_folder);
        ASSERT_TRUE(settled(model));
        EXPECT_EQ(model.rowCount(), 20);
    }
}

/// Whatever happens and whatever is looked at: when the model has been told, it shows what the store holds, and what is
/// held is the item that it was.
TEST_F(ItemListModelTest, RandomChangesShowAsTheyStand) {
    for (const unsigned seed : {1U, 2U, 3U}) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto below = [&](qint64 limit) { return static_cast<int>(random() % static_cast<quint64>(limit)); };
        const FolderId folder = m_store.addFolder({.parent = m_folder, .name = QString::number(seed)}).id;
        QMap<ItemId, ItemRecord> standing;
        const auto insert = [&](Store &store) {
            const ItemRecord made =
                store.insert(folder, item(QString::number(below(300)), below(500), QString::number(below(5))));
            standing.insert(made.id, made);
        };
        for (int i = 0; i < 900; ++i)
            insert(m_store);
        ItemListModel model(m_mailboxes);
        const auto tester = watched(model);
        model.show(m_store, folder);
        QList<std::pair<QPersistentModelIndex, QString>> held;
        for (int round = 0; round < 120; ++round) {
            const int changes = below(8);
            for (int i = 0; i < changes; ++i) {
                Store &store = below(2) == 0 ? m_store : m_other;
                const auto any = std::next(standing.begin(), below(standing.size()));
                switch (below(5)) {
                case 0:
                    store.remove(*any);
                    standing.erase(any);
                    break;
                case 1:
                    any->unread = !any->unread;
                    *any = store.save(*any);
                    break;
                case 2:
                    any->subject = QString::number(below(300));
                    *any = store.save(*any);
                    break;
                case 3:
                    store.move(*any, m_folder);
                    standing.erase(any);
                    break;
                default:
                    insert(store);
                }
            }
            if (below(3) == 0)
                static_cast<void>(subject(model, below(model.rowCount())));
            look();
            static_cast<void>(eventually([&] { return model.rowCount() == standing.size(); }));
            ASSERT_EQ(model.rowCount(), standing.size());
            for (int i = 0; i < 3; ++i) {
                const QModelIndex index = model.index(below(model.rowCount()), subjectColumn);
                if (const QString id = index.data(ItemListModel::EntryIdRole).toString(); !id.isEmpty())
                    held.append({index, id});
            }
            if (held.size() > 30)
                held.remove(0, 10);
            if (round % 20 == 19)
                model.sort(std::array{subjectColumn, senderColumn, receivedColumn}[static_cast<std::size_t>(below(3))],
                           below(2) == 0 ? Qt::AscendingOrder : Qt::DescendingOrder);
            for (const auto &[index, id] : std::as_const(held))
                if (index.isValid()) {
                    ASSERT_EQ(index.data(ItemListModel::EntryIdRole).toString(), id) << round;
                }
        }
        const ItemList list(m_store, folder, model.order());
        // Parts that nobody had looked at may have been counted otherwise: reading all of it sets that right.
        QStringList expected;
        for (const ItemRecord &each : list.after({}, 0, 100000))
            expected << each.entryId;
        EXPECT_TRUE(eventually([&] {
            QStringList shown;
            for (int row = 0; row < model.rowCount(); ++row)
                shown << model.index(row, 0).data(ItemListModel::EntryIdRole).toString();
            return shown == expected;
        }));
    }
}

} // namespace desk

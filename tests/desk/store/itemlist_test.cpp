// Pages of a folder in an order: each is a look-up in one index, whatever stands before it.

#include "storefixture.h"

#include "desk/store/itemlist.h"

namespace desk {

class ItemListTest : public StoreTest {
  protected:
    std::unique_ptr<Store> m_store = open();
    FolderId m_folder = folderNamed(*m_store, "A");
};

TEST_F(ItemListTest, EveryPageAndCountIsOneSearchInTheIndexOfItsOrder) {
    struct Case {
        std::optional<Field> field;
        const char *index;
    };
    const Case cases[] = {{std::nullopt, "items_by_arrival (folder=?"},
                          {Field::ReceivedAt, "items_by_received_at (folder=?"},
                          {Field::SenderName, "items_by_sender_name (folder=?"},
                          {Field::Subject, "items_by_subject (folder=?"}};
    for (const Case &each : cases)
        for (const bool isDescending : {false, true}) {
            const ItemList list(*m_store, m_folder, {.field = each.field, .isDescending = isDescending});
            const QStringList plans = list.plans(list.keyOf(withSubject("x")));
            ASSERT_EQ(plans.size(), 7) << plans.join(u'\n').toStdString();
            for (qsizetype i = 0; i < plans.size(); ++i) {
                EXPECT_TRUE(plans[i].startsWith("SEARCH i USING ")) << plans[i].toStdString();
                EXPECT_TRUE(plans[i].contains(each.index)) << plans[i].toStdString();
                // Beside an item the place itself is looked up.
                EXPECT_TRUE(i < 2 || plans[i].contains(" AND ")) << plans[i].toStdString();
            }
        }
    EXPECT_EQ(failureOf([&] { const ItemList list(*m_store, m_folder, {.field = Field::To}); }), failures::invalidCall);
}

/// Against a list that is sorted in memory, with texts that break naive orders.
TEST_F(ItemListTest, PagesFollowEachOtherFromBothEnds) {
    QStringList texts = oddTexts();
    texts += texts;
    for (const QString &text : std::as_const(texts)) {
        ItemRecord record = withSubject(text);
        record.senderName = text.left(3);
        record.receivedAt.days = 40000.0 + static_cast<double>(text.size() % 5);
        m_store->insert(m_folder, record);
    }
    for (const std::optional<Field> field : {std::optional<Field>(), std::optional(Field::Subject),
                                             std::optional(Field::SenderName), std::optional(Field::ReceivedAt)})
        for (const bool isDescending : {false, true}) {
            SCOPED_TRACE(isDescending);
            const ItemList list(*m_store, m_folder, {.field = field, .isDescending = isDescending});
            QList<ItemRecord> all = m_store->itemsArrivedAfter(m_folder, 0);
            std::ranges::sort(all, [&](const ItemRecord &left, const ItemRecord &right) {
                return list.precedes(list.keyOf(left), list.keyOf(right));
            });
            EXPECT_EQ(list.after({}, 0, 1000), all);
            EXPECT_EQ(list.before({}, 0, 1000), all);
            for (qsizetype at = 0; at < all.size(); ++at) {
                const ItemKey key = list.keyOf(all[at]);
                EXPECT_EQ(list.after(key, 1, 3), all.mid(at + 2, 3));
                const qsizetype first = std::max(qsizetype{0}, at - 4);
                EXPECT_EQ(list.before(key, 1, 3), all.mid(first, std::max(qsizetype{0}, at - 1 - first)));
                EXPECT_EQ(list.countBetween(std::nullopt, key), at);
                EXPECT_EQ(list.countBetween(list.keyOf(all.first()), key), std::max(qsizetype{0}, at - 1));
                const QList<ItemMark> marks = list.marks(list.keyOf(all.first()), key, 1000);
                ASSERT_EQ(marks.size(), at + 1);
                EXPECT_EQ(marks.last(), list.markOf(all[at]));
            }
        }
}

} // namespace desk

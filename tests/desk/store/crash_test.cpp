// Writers killed at any moment: nothing lost, nothing doubled, nothing half.

#include "storefixture.h"
#include "support/child.h"

#include "desk/store/transfer.h"

#include <random>
#include <thread>

namespace desk {

class CrashTest : public StoreTest {
  protected:
    std::minstd_rand m_random{42};

    unsigned below(unsigned limit) { return static_cast<unsigned>(m_random()) % limit; }

    /// Lets a child do some whole operations and part of another, then kills it.
    void killAmid(Child &child, unsigned mostOperations) {
        const unsigned operations = 1 + below(mostOperations);
        for (unsigned i = 0; i < operations; ++i)
            if (child.next() == '\0')
                break;
        std::this_thread::sleep_for(std::chrono::microseconds(below(900)));
        child.kill();
    }
    static ItemParts generation(int number) {
        const QString text = QString::number(number);
        return {.bodies = Bodies{.plain = text.repeated(3000), .html = text},
                .properties = QList<Property>{{.name = "A", .value = text},
                                              {.name = QStringLiteral("B%1").arg(number % 3), .value = text}},
                .attachments = QList<AttachmentRecord>{{.displayName = text, .data = text.toUtf8().repeated(4000)}},
                .original = text.toUtf8()};
    }
};

TEST_F(CrashTest, ASaveIsWholeOrNotThereAndAReportedOneIsThere) {
    FolderId folder = 0;
    ItemId id = 0;
    {
        const auto store = open();
        folder = folderNamed(*store, "Inbox");
        id = store->insert(folder, withSubject("0"), generation(0)).id;
    }
    int least = 0;
    for (int round = 0; round < 40; ++round) {
        Child writer([&](int output) -> int {
            const auto store = open();
            ItemRecord item = store->item(id).value();
            while (true) {
                const int next = item.subject.toInt() + 1;
                item.subject = QString::number(next);
                item = store->save(item, generation(next));
                report(output, 'x');
            }
        });
        const unsigned before = 1 + below(8);
        unsigned reported = 0;
        while (reported < before && writer.next() != '\0')
            ++reported;
        ASSERT_EQ(reported, before);
        std::this_thread::sleep_for(std::chrono::microseconds(below(900)));
        writer.kill();
        reported += static_cast<unsigned>(writer.rest().size());

        const auto store = open();
        const int found = store->item(id).value().subject.toInt();
        const int promised = least + static_cast<int>(reported);
        ASSERT_TRUE(found == promised || found == promised + 1) << found << " after " << promised;
        ASSERT_TRUE(partsOf(*store, id) == generation(found));
        ASSERT_EQ(store->find(folder, {{"A", QString::number(found)}}).value().id, id);
        least = found;
    }
}

/// First starts, several at once, each killed at some moment: what is there under the store's name is always a store,
/// and the next start makes one or takes it.
TEST_F(CrashTest, AStoreIsMadeWholeOrNotAtAll) {
    int unfinished = 0;
    int made = 0;
    for (int round = 0; round < 150; ++round) {
        const QString name = QStringLiteral("new%1").arg(round);
        const auto start = [&](int) {
            static_cast<void>(open(name));
            return 0;
        };
        {
            Child first(start);
            Child second(start);
            std::this_thread::sleep_for(std::chrono::microseconds(below(7000)));
            first.kill();
            std::this_thread::sleep_for(std::chrono::microseconds(below(1500)));
            second.kill();
        }
        unfinished += QFile::exists(path(name + ".unfinished")) ? 1 : 0;
        QString id;
        if (QFile::exists(path(name))) {
            ++made;
            id = Store(path(name), {.create = false}).storeId();
        }
        const auto store = open(name);
        EXPECT_TRUE(id.isEmpty() || id == store->storeId());
        folderNamed(*store, "Inbox");
        EXPECT_FALSE(id.isEmpty() && QFile::exists(path(name + ".unfinished")));
    }
    // Otherwise the kills fell before or behind everything, and the rounds showed nothing.
    EXPECT_GT(unfinished, 0);
    EXPECT_GT(made, 0);
}

/// Items that are moved, copied and deleted in one store: a copy is named by its item and removed before the next.
TEST_F(CrashTest, AnItemIsAlwaysInOneFolder) {
    constexpr int items = 12;
    FolderId folders[2];
    {
        const auto store = open();
        folders[0] = folderNamed(*store, "0");
        folders[1] = folderNamed(*store, "1");
        for (int i = 0; i < items; ++i)
            store->insert(folders[0], withSubject(QString::number(i)), generation(i));
    }
    for (int round = 0; round < 40; ++round) {
        const unsigned seed = below(1000000);
        Child mover([&](int output) -> int {
            std::minstd_rand random(seed);
            const auto store = open();
            while (true) {
                const FolderId from = folders[random() % 2];
                const qint64 count = store->count(from);
                if (count == 0)
                    continue;
                const ItemRecord item = store->nth(from, 1 + random() % count).value();
                store->move(item, from == folders[0] ? folders[1] : folders[0]);
                store->remove(store->copy(item.id));
                report(output, 'x');
            }
        });
        killAmid(mover, 6);

        const auto store = open();
        QStringList found = subjects(*store, folders[0]) + subjects(*store, folders[1]);
        QStringList distinct = found;
        distinct.removeDuplicates();
        ASSERT_EQ(distinct.size(), items);
        ASSERT_LE(found.size(), items + 1);
        ASSERT_EQ(store->count(folders[0]) + store->count(folders[1]), found.size());
        for (const FolderId folder : folders)
            ASSERT_EQ(store->count(folder), store->itemsArrivedAfter(folder, 0).size());
        for (const FolderId folder : folders)
            for (const ItemRecord &item : store->itemsArrivedAfter(folder, 0)) {
                ASSERT_TRUE(partsOf(*store, item.id) == generation(item.subject.toInt()));
                if (found.count(item.subject) > 1) {
                    found.removeOne(item.subject);
                    store->remove(item);
                }
            }
    }
}

/// Two movers carry items to and fro between two stores; now one is killed, now both. The one that lives settles
/// nothing of the other's that is under way.
TEST_F(CrashTest, MovesBetweenStoresLoseAndDoubleNothing) {
    constexpr int items = 10;
    const QString names[2] = {"mailbox", "public"};
    {
        const auto store = open(names[0]);
        const FolderId folder = folderNamed(*store, "F");
        folderNamed(*open(names[1]), "F");
        for (int i = 0; i < items; ++i)
            store->insert(folder, withSubject(QString::number(i)), generation(i));
    }
    const auto carry = [&](unsigned seed, int output) {
        std::minstd_rand random(seed);
        const std::unique_ptr<Store> stores[2] = {open(names[0]), open(names[1])};
        const FolderId folders[2] = {folderNamed(*stores[0], "F"), folderNamed(*stores[1], "F")};
        while (true) {
            const unsigned from = random() % 2;
            const qint64 count = stores[from]->count(folders[from]);
            const auto item = count == 0 ? std::nullopt : stores[from]->nth(folders[from], 1 + random() % count);
            if (!item)
                continue;
            const qint32 failure =
                failureOf([&] { moveBetween(*stores[from], *item, *stores[1 - from], folders[1 - from]); });
            // The other mover may have been quicker.
            if (failure != 0 && failure != failures::itemGone)
                return 1;
            settleTransfers(*stores[0], *stores[1]);
            report(output, 'x');
        }
    };
    int settled = 0;
    for (int round = 0; round < 60; ++round) {
        Child first([&, seed = below(1000000)](int output) { return carry(seed, output); });
        Child second([&, seed = below(1000000)](int output) { return carry(seed, output); });
        killAmid(first, 5);
        killAmid(second, 5);
        ASSERT_EQ(first.wait(), -1);
        ASSERT_EQ(second.wait(), -1);

        const auto mailbox = open(names[0]);
        const auto shared = open(names[1]);
        settled += settleTransfers(*mailbox, *shared);
        QStringList found;
        qint64 counted = 0;
        for (Store *store : {mailbox.get(), shared.get()}) {
            counted += store->count(folderNamed(*store, "F"));
            for (const ItemRecord &item : store->itemsArrivedAfter(folderNamed(*store, "F"), 0)) {
                found << item.subject;
                ASSERT_TRUE(partsOf(*store, item.id) == generation(item.subject.toInt()));
            }
        }
        ASSERT_EQ(found.size(), items) << "round " << round;
        ASSERT_EQ(counted, items) << "round " << round;
        found.removeDuplicates();
        ASSERT_EQ(found.size(), items) << "round " << round;
    }
    // Otherwise the kills never fell amid a move, and the rounds showed nothing.
    EXPECT_GT(settled, 0);
}

} // namespace desk

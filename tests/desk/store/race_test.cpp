// Several connections at one store at the same moment.

#include "storefixture.h"

#include "desk/store/transfer.h"

#include <atomic>
#include <barrier>
#include <thread>

namespace desk {

class RaceTest : public StoreTest {
  protected:
    static constexpr int rounds = 60;
    static constexpr int racers = 3;

    std::unique_ptr<Store> m_store = open();
    FolderId m_inbox = folderNamed(*m_store, "Inbox");
    FolderId m_done = folderNamed(*m_store, "Done");

    /// What each racer's failure was, 0 for success, sorted; every racer has a connection of its own and the same
    /// record.
    QList<qint32> race(const ItemRecord &item, const std::function<void(Store &, const ItemRecord &, int)> &run) {
        std::barrier start(racers);
        std::vector<qint32> outcomes(racers);
        std::vector<std::jthread> threads;
        for (int racer = 0; racer < racers; ++racer)
            threads.emplace_back([&, racer] {
                const auto store = open();
                start.arrive_and_wait();
                outcomes[static_cast<std::size_t>(racer)] = failureOf([&] { run(*store, item, racer); });
            });
        threads.clear();
        std::ranges::sort(outcomes);
        return {outcomes.begin(), outcomes.end()};
    }
};

TEST_F(RaceTest, OneOfSeveralSavesWins) {
    const QList<qint32> oneWins{failures::itemChanged, failures::itemChanged, 0};
    for (int round = 0; round < rounds; ++round) {
        const ItemRecord item = m_store->insert(m_inbox, withSubject("x"));
        EXPECT_EQ(race(item,
                       [](Store &store, ItemRecord mine, int racer) {
                           mine.billingInformation = QString::number(racer);
                           const QString mark = mine.billingInformation;
                           store.save(mine, {.bodies = Bodies{.plain = mark}});
                       }),
                  oneWins);
        const ItemRecord saved = m_store->item(item.id).value();
        EXPECT_EQ(saved.version, item.version + 1);
        EXPECT_EQ(m_store->bodies(item.id).plain, saved.billingInformation);
    }
}

TEST_F(RaceTest, OneOfSeveralTakersWins) {
    const auto target = open("public.store");
    const FolderId tickets = folderNamed(*target, "Tickets");
    const QList<qint32> oneWins{failures::itemGone, failures::itemGone, 0};
    for (int round = 0; round < rounds; ++round) {
        const ItemRecord item = m_store->insert(m_inbox, withSubject(QString::number(round)));
        EXPECT_EQ(race(item,
                       [&](Store &store, const ItemRecord &mine, int racer) {
                           if (racer == 0)
                               store.move(mine, m_done);
                           else if (racer == 1)
                               store.remove(mine);
                           else
                               moveBetween(store, mine, *open("public.store"), tickets);
                       }),
                  oneWins);
        EXPECT_EQ(m_store->count(m_inbox), 0);
    }
    EXPECT_LE(m_store->count(m_done) + target->count(tickets), rounds);
}

TEST_F(RaceTest, EveryoneSeesEveryArrivalOnceInOneOrder) {
    constexpr int itemsEach = 150;
    std::atomic<int> writing{racers};
    std::vector<std::jthread> threads;
    for (int racer = 0; racer < racers; ++racer)
        threads.emplace_back([&] {
            const auto store = open();
            for (int i = 0; i < itemsEach; ++i)
                store->insert(m_inbox, {});
            --writing;
        });
    QList<ItemId> seen;
    qint64 arrival = 0;
    const auto look = [&] {
        for (const ItemRecord &item : m_store->itemsArrivedAfter(m_inbox, arrival)) {
            seen << item.id;
            arrival = item.arrival;
        }
    };
    StoreRevision known;
    while (writing > 0)
        if (const StoreRevision standing = m_store->revision(); std::exchange(known, standing) != standing)
            look();
    threads.clear();
    look();
    ASSERT_EQ(seen.size(), racers * itemsEach);
    ASSERT_EQ(m_store->count(m_inbox), seen.size());
    for (qsizetype i = 0; i < seen.size(); ++i)
        ASSERT_EQ(m_store->nth(m_inbox, i + 1).value().id, seen[i]);
}

TEST_F(RaceTest, SeveralMakeOneNewStore) {
    for (int round = 0; round < 10; ++round) {
        const QString name = QStringLiteral("new%1").arg(round);
        std::barrier start(racers);
        std::vector<QString> ids(racers);
        std::vector<std::jthread> threads;
        for (int racer = 0; racer < racers; ++racer)
            threads.emplace_back([&, racer] {
                start.arrive_and_wait();
                if (const auto failure = Attempt([&] { ids[static_cast<std::size_t>(racer)] = open(name)->storeId(); }))
                    ADD_FAILURE() << failure->what();
            });
        threads.clear();
        EXPECT_EQ(ids[0], ids[1]);
        EXPECT_EQ(ids[0], ids[2]);
    }
}

} // namespace desk

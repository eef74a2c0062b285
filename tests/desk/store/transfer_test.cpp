// An item moved between the mailbox and the public folders.

#include "storefixture.h"

#include "desk/store/connection.h"
#include "desk/store/itemwriter.h"
#include "desk/store/statements.h"
#include "desk/store/transfer.h"
#include "desk/store/transferlock.h"

namespace desk {

class TransferTest : public StoreTest {
  protected:
    std::unique_ptr<Store> m_mailbox = open();
    std::unique_ptr<Store> m_public = open("public.store");
    FolderId m_inbox = folderNamed(*m_mailbox, "Inbox");
    FolderId m_tickets = folderNamed(*m_public, "Tickets");

    /// Leaves the first commit of a move behind, as a process that was killed after it: an item in no folder.
    ItemId leaveHiddenCopy(const ItemRecord &fields, const QByteArray &number) {
        Connection target(m_public->path(), std::chrono::milliseconds(1000));
        Transaction transaction(target);
        const ItemId id = takeNumbers(target);
        insertItem(target, {.id = id, .folder = std::nullopt, .arrival = id}, fields, {});
        target.run(sql::noteIncoming,
                   {{"item", id}, {"transfer", number}, {"source", m_mailbox->tag()}, {"folder", m_tickets}});
        transaction.commit();
        return id;
    }
    /// The second commit: the source gives the item up.
    void giveUp(const ItemRecord &item, const QByteArray &number) {
        Connection source(m_mailbox->path(), std::chrono::milliseconds(1000));
        Transaction transaction(source);
        removeStanding(source, item.id, item.folder);
        source.run(sql::noteOutgoing, {{"transfer", number}, {"target", m_public->tag()}});
        transaction.commit();
    }
    [[nodiscard]] qint64 openNotes() const {
        qint64 notes = 0;
        for (const QString &file : {m_mailbox->path(), m_public->path()}) {
            Connection connection(file, std::chrono::milliseconds(1000));
            notes += connection
                         .once("SELECT (SELECT count(*) FROM transfers_in) +"
                               " (SELECT count(*) FROM transfers_out)")
                         .toLongLong();
        }
        return notes;
    }
};

TEST_F(TransferTest, AMovedItemTakesEverythingAlong) {
    ItemRecord item = m_mailbox->insert(m_inbox, withSubject("x"), everyPart("p"));
    item = m_mailbox->save(item);
    const ItemRecord moved = moveBetween(*m_mailbox, item, *m_public, m_tickets);
    EXPECT_NE(moved.entryId, item.entryId);
    EXPECT_EQ(m_public->itemByEntryId(moved.entryId), moved);
    EXPECT_TRUE(partsOf(*m_public, moved.id) == everyPart("p"));
    EXPECT_EQ(moved.createdAt, item.createdAt);
    EXPECT_EQ(m_public->itemsArrivedAfter(m_tickets, 0), QList{moved});
    EXPECT_EQ(openNotes(), 0);
    EXPECT_EQ(moveBetween(*m_public, moved, *m_public, m_public->root().id).entryId, moved.entryId);
}

TEST_F(TransferTest, AMoveThatCannotBeLeavesTheItemWhereItIs) {
    const ItemRecord item = m_mailbox->insert(m_inbox, withSubject("x"));
    EXPECT_EQ(failureOf([&] { moveBetween(*m_mailbox, item, *m_public, 4711); }), failures::notFound);
    EXPECT_EQ(m_mailbox->item(item.id), item);

    ItemRecord elsewhere = item;
    elsewhere.folder = m_mailbox->root().id;
    EXPECT_EQ(failureOf([&] { moveBetween(*m_mailbox, elsewhere, *m_public, m_tickets); }), failures::itemGone);
    m_mailbox->remove(item);
    EXPECT_EQ(failureOf([&] { moveBetween(*m_mailbox, item, *m_public, m_tickets); }), failures::itemGone);
    EXPECT_EQ(m_public->count(m_tickets), 0);
    EXPECT_EQ(openNotes(), 0);
}

TEST_F(TransferTest, ASourceThatIsLockedKeepsItsItemAndTheTargetShowsNone) {
    const auto patient = std::make_unique<Store>(path(), StoreOptions{.wait = std::chrono::milliseconds(20)});
    const ItemRecord item = patient->insert(m_inbox, withSubject("x"));
    Connection other(path(), std::chrono::milliseconds(20));
    {
        const Transaction busy(other);
        EXPECT_EQ(failureOf([&] { moveBetween(*patient, item, *m_public, m_tickets); }), failures::unspecified);
    }
    EXPECT_EQ(m_public->count(m_tickets), 0);
    EXPECT_EQ(patient->item(item.id), item);
    EXPECT_EQ(settleTransfers(*m_public, *patient), 1);
    EXPECT_EQ(openNotes(), 0);
    EXPECT_EQ(moveBetween(*patient, item, *m_public, m_tickets).subject, item.subject);
}

TEST_F(TransferTest, ADeadMoversCopyIsDroppedOrShownAsTheSourceSays) {
    const ItemRecord stays = m_mailbox->insert(m_inbox, withSubject("stays"));
    const ItemRecord goes = m_mailbox->insert(m_inbox, withSubject("goes"));
    leaveHiddenCopy(stays, QByteArray(16, 's'));
    const ItemId hidden = leaveHiddenCopy(goes, QByteArray(16, 'g'));
    giveUp(goes, QByteArray(16, 'g'));
    EXPECT_EQ(m_public->count(m_tickets), 0);
    EXPECT_FALSE(m_public->item(hidden).has_value());
    EXPECT_FALSE(m_public->find(m_tickets, {{Field::Subject, "goes"}}).has_value());

    EXPECT_EQ(settleTransfers(*m_mailbox, *m_public), 2);
    EXPECT_EQ(subjects(*m_public, m_tickets), QStringList("goes"));
    EXPECT_EQ(subjects(*m_mailbox, m_inbox), QStringList("stays"));
    EXPECT_EQ(settleTransfers(*m_mailbox, *m_public), 0);
    EXPECT_EQ(openNotes(), 0);
}

TEST_F(TransferTest, ALiveMoversCopyIsLeftAlone) {
    const ItemRecord item = m_mailbox->insert(m_inbox, withSubject("x"));
    const ItemId hidden = leaveHiddenCopy(item, QByteArray(16, 'x'));
    {
        TransferLock mover(m_public->path());
        ASSERT_TRUE(mover.take(hidden));
        EXPECT_EQ(settleTransfers(*m_mailbox, *m_public), 0);
        giveUp(item, QByteArray(16, 'x'));
        EXPECT_EQ(settleTransfers(*m_mailbox, *m_public), 0);
        EXPECT_EQ(m_public->count(m_tickets), 0);
        EXPECT_EQ(openNotes(), 2);
    }
    EXPECT_EQ(settleTransfers(*m_mailbox, *m_public), 1);
    EXPECT_EQ(m_public->count(m_tickets), 1);
}

TEST_F(TransferTest, ACopyWhoseFolderWentIsShownAtTheTop) {
    const ItemRecord item = m_mailbox->insert(m_inbox, withSubject("x"));
    leaveHiddenCopy(item, QByteArray(16, 'x'));
    giveUp(item, QByteArray(16, 'x'));
    m_public->removeFolder(m_tickets);
    EXPECT_EQ(settleTransfers(*m_mailbox, *m_public), 1);
    EXPECT_EQ(subjects(*m_public, m_public->root().id), QStringList("x"));
}

TEST_F(TransferTest, AnotherStoresMovesAreNotSettled) {
    const ItemRecord item = m_mailbox->insert(m_inbox, withSubject("x"));
    leaveHiddenCopy(item, QByteArray(16, 'x'));
    giveUp(item, QByteArray(16, 'x'));
    const auto third = open("third.store");
    EXPECT_EQ(settleTransfers(*third, *m_public), 0);
    EXPECT_EQ(settleTransfers(*third, *m_mailbox), 0);
    EXPECT_EQ(openNotes(), 2);
    EXPECT_EQ(settleTransfers(*m_public, *m_mailbox), 1);
}

} // namespace desk

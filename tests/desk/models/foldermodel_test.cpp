// The tree of folders, as views see it, while folders come, go and fill.

#include "modelsfixture.h"

#include "desk/models/foldermodel.h"

#include <QSignalSpy>

namespace desk {

class FolderModelTest : public ModelsTest {
  protected:
    void SetUp() override {
        for (const char *name : {"Zeta", "alpha", "Müller"})
            m_store.addFolder({.parent = m_folder, .name = QString::fromUtf8(name)});
        look();
    }
    static QStringList namesBelow(FolderModel &model, const QModelIndex &parent) {
        model.fetchMore(parent);
        QStringList names;
        for (int row = 0; row < model.rowCount(parent); ++row)
            names << model.index(row, 0, parent).data().toString();
        return names;
    }
    FolderId child(const QString &name) { return m_other.findFolder(m_folder, name).value().id; }
};

TEST_F(FolderModelTest, ShowsEveryStoreTheDefaultFoldersFirst) {
    FolderModel model(m_mailboxes);
    const auto tester = watched(model);
    EXPECT_EQ(namesBelow(model, {}), QStringList({"Mailbox - Alma Tester", "Public Folders"}));
    EXPECT_EQ(namesBelow(model, model.index(0, 0)), QStringList({"Inbox", "Drafts", "Outbox", "Sent Items",
                                                                 "Deleted Items", "Calendar", "Contacts", "Tasks"}));
    const QModelIndex tickets = model.indexOf(m_store, m_folder);
    EXPECT_EQ(tickets.data().toString(), "Tickets");
    EXPECT_EQ(model.placeOf(tickets).folder, m_folder);
    EXPECT_EQ(namesBelow(model, tickets), QStringList({"alpha", "Müller", "Zeta"}));
    EXPECT_FALSE(model.indexOf(m_store, m_folder + 1000).isValid());
}

TEST_F(FolderModelTest, CountsFollowWhoeverWrites) {
    FolderModel model(m_mailboxes);
    const auto tester = watched(model);
    const QPersistentModelIndex tickets = model.indexOf(m_store, m_folder);
    const QPersistentModelIndex inbox =
        model.indexOf(m_mailboxes.mailbox(), m_mailboxes.specialFolder(SpecialFolder::Inbox).id);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    ItemRecord record = item("x", 0);
    record.unread = true;
    record = m_other.insert(m_folder, record);
    EXPECT_EQ(tickets.data(FolderModel::UnreadCountRole).toInt(), 0);
    look();
    EXPECT_EQ(tickets.data(FolderModel::UnreadCountRole).toInt(), 1);
    EXPECT_EQ(tickets.data(FolderModel::ItemCountRole).toInt(), 1);
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.first().first().toModelIndex(), tickets);
    record.unread = false;
    record = m_store.save(record);
    look();
    EXPECT_EQ(tickets.data(FolderModel::UnreadCountRole).toInt(), 0);
    EXPECT_EQ(inbox.data(FolderModel::ItemCountRole).toInt(), 0);
    look();
    EXPECT_EQ(changed.count(), 2);
}

TEST_F(FolderModelTest, WhatIsHeldStaysOnItsFolder) {
    FolderModel model(m_mailboxes);
    const auto tester = watched(model);
    const QModelIndex tickets = model.indexOf(m_store, m_folder);
    static_cast<void>(namesBelow(model, tickets));
    const QPersistentModelIndex zeta = model.indexOf(m_store, child("Zeta"));
    const QPersistentModelIndex muller = model.indexOf(m_store, child("Müller"));
    const FolderId below = m_store.addFolder({.parent = child("Zeta"), .name = "below"}).id;
    look();
    const QPersistentModelIndex deep = model.indexOf(m_store, below);
    EXPECT_EQ(deep.data().toString(), "below");

    struct Case {
        const char *name;
        std::function<void()> change;
        QStringList expected;
    };
    const auto rename = [&](const QString &from, const QString &to) {
        FolderRecord record = m_other.folder(child(from));
        record.name = to;
        m_other.saveFolder(record);
    };
    const Case cases[] = {
        {"new ones",
         [&] {
             for (const char *name : {"beta", "aaa", "zzz"})
                 m_other.addFolder({.parent = m_folder, .name = name});
         },
         {"aaa", "alpha", "beta", "Müller", "Zeta", "zzz"}},
        {"a name that moves it", [&] { rename("Zeta", "Amber"); }, {"aaa", "alpha", "Amber", "beta", "Müller", "zzz"}},
        {"one goes", [&] { m_other.removeFolder(child("alpha")); }, {"aaa", "Amber", "beta", "Müller", "zzz"}},
        {"one goes elsewhere",
         [&] { m_other.moveFolder(child("aaa"), child("beta")); },
         {"Amber", "beta", "Müller", "zzz"}},
    };
    for (const Case &each : cases) {
        SCOPED_TRACE(each.name);
        each.change();
        look();
        EXPECT_EQ(namesBelow(model, tickets), each.expected);
        EXPECT_EQ(muller.data().toString(), "Müller");
        EXPECT_EQ(deep.data().toString(), "below");
        EXPECT_EQ(deep.parent(), zeta);
    }
    EXPECT_EQ(namesBelow(model, model.indexOf(m_store, child("beta"))), QStringList("aaa"));
}

} // namespace desk

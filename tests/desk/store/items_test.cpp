// One item through its life: made, read, saved, copied, moved, deleted.

#include "storefixture.h"

#include "desk/store/entryid.h"
#include "desk/store/itemcolumns.h"

namespace desk {

class ItemsTest : public StoreTest {
  protected:
    std::unique_ptr<Store> m_store = open();
    FolderId m_inbox = folderNamed(*m_store, "Inbox");
    FolderId m_done = folderNamed(*m_store, "Done");

    void reopen() {
        m_store.reset();
        m_store = open();
    }
};

template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};

TEST_F(ItemsTest, EveryFieldComesBack) {
    ItemRecord fields;
    int number = 10;
    for (const ItemColumn &column : itemColumns()) {
        EXPECT_EQ(std::ranges::count(itemColumns(), column.member, &ItemColumn::member), 1) << column.name;
        ++number;
        std::visit(Overloaded{[&](QString ItemRecord::*text) { fields.*text = QString::number(number); },
                              [&](qint32 ItemRecord::*whole) { fields.*whole = number; },
                              [&](bool ItemRecord::*flag) { fields.*flag = true; },
                              [&](DateTime ItemRecord::*moment) { fields.*moment = DateTime{number - 20.25}; }},
                   column.member);
    }
    const ItemRecord stored = m_store->insert(m_inbox, fields);
    reopen();
    const ItemRecord read = m_store->item(stored.id).value();
    EXPECT_EQ(read, stored);
    fields.id = stored.id;
    fields.folder = m_inbox;
    fields.entryId = stored.entryId;
    fields.version = 1;
    fields.arrival = stored.arrival;
    fields.modifiedAt = stored.modifiedAt;
    EXPECT_EQ(read, fields);
    EXPECT_FALSE(stored.modifiedAt.isZero());
}

TEST_F(ItemsTest, AnyTextComesBackFromAnyPlace) {
    for (const QString &text : oddTexts()) {
        SCOPED_TRACE(text.left(20).toStdString());
        ItemRecord fields = withSubject(text);
        fields.to = text;
        fields.fullName = text;
        ItemParts parts = everyPart(text);
        parts.properties->append({.name = QStringLiteral("n") + text, .value = text});
        const ItemRecord stored = m_store->insert(m_inbox, fields, parts);
        const ItemRecord read = m_store->item(stored.id).value();
        EXPECT_EQ(read.subject, text);
        EXPECT_EQ(read.to, text);
        for (AttachmentRecord &attachment : *parts.attachments)
            attachment.id = 0;
        EXPECT_TRUE(partsOf(*m_store, stored.id) == parts);
        const QList<Condition> searches[] = {{{Field::Subject, text}, {QStringLiteral("N") + text, text}},
                                             {{QStringLiteral("N") + text, text}},
                                             {{Field::FullName, text}, {Field::To, text}}};
        for (const QList<Condition> &conditions : searches)
            EXPECT_TRUE(m_store->find(m_inbox, conditions) == read);
        m_store->remove(stored);
    }
}

TEST_F(ItemsTest, PropertiesKeepKindsAndOrderOfAddingAndIgnoreCase) {
    ItemRecord item = m_store->insert(m_inbox, {}, everyPart("a"));
    QList<Property> properties = m_store->properties(item.id);
    const QList<Property> before = properties;
    properties.removeAt(1);
    properties[0].name = "TEXT";
    properties[0].value = "b";
    properties.prepend({.name = "New", .type = PropertyType::Number, .value = qint32{7}});
    item = m_store->save(item, {.properties = properties});
    const QList<Property> after = m_store->properties(item.id);
    ASSERT_EQ(after.size(), 5);
    EXPECT_EQ(after[0], (Property{.name = "TEXT", .value = "b"}));
    EXPECT_EQ(after[1], before[2]);
    EXPECT_EQ(after[3], before[4]);
    EXPECT_TRUE(after[3].value.isEmpty());
    EXPECT_EQ(after[4].value, Value(7.0));

    const QList<Property> twice{{.name = "Σίσυφος"}, {.name = "ΣΊΣΥΦΟΣ"}};
    EXPECT_EQ(failureOf([&] { m_store->save(item, {.properties = twice}); }), failures::invalidCall);
    const QList<Property> wrong{{.name = "N", .type = PropertyType::Number, .value = "x"}};
    EXPECT_EQ(failureOf([&] { m_store->save(item, {.properties = wrong}); }), failures::typeMismatch);
    EXPECT_EQ(m_store->properties(item.id), after);
}

TEST_F(ItemsTest, AttachmentsAreAddedRemovedRenamedAndReordered) {
    const auto named = [](const QString &name) {
        return AttachmentRecord{.fileName = name, .displayName = name, .data = name.toUtf8()};
    };
    ItemRecord item = m_store->insert(m_inbox, {}, {.attachments = QList{named("a"), named("b"), named("c")}});
    EXPECT_EQ(item.attachmentCount, 3);
    EXPECT_EQ(item.size, 3);
    QList<AttachmentRecord> list = m_store->attachments(item.id);
    const qint64 idOfA = list[0].id;
    list = {list[2], named("dddd"), list[1]};
    list[2].displayName = "B";
    item = m_store->save(item, {.attachments = list});
    EXPECT_EQ(item.attachmentCount, 3);
    EXPECT_EQ(item.size, 6);
    QStringList names;
    for (const AttachmentRecord &attachment : m_store->attachments(item.id))
        names << attachment.displayName + u'=' + QString::fromUtf8(m_store->attachmentData(attachment.id));
    EXPECT_EQ(names.join(u' '), "c=c dddd=dddd B=b");
    EXPECT_EQ(failureOf([&] { static_cast<void>(m_store->attachmentData(idOfA)); }), failures::notFound);

    AttachmentRecord foreign;
    foreign.id = idOfA;
    EXPECT_EQ(failureOf([&] { m_store->save(item, {.attachments = QList{foreign}}); }), failures::notFound);
    EXPECT_EQ(m_store->attachments(item.id).size(), 3);
}

TEST_F(ItemsTest, SizeIsTheOriginalOrWhatStandsWhereThatIsMore) {
    ItemRecord item = m_store->insert(
        m_inbox, {}, {.bodies = Bodies{.plain = QString(100, u'x')}, .original = QByteArray(30000, 'o')});
    EXPECT_EQ(item.size, 30000);
    const QByteArray large(50000, 'a');
    item = m_store->save(item, {.attachments = QList{AttachmentRecord{.data = large}}});
    EXPECT_EQ(item.size, 50100);
}

TEST_F(ItemsTest, AnItemThatWentIsGoneForEveryOperation) {
    struct Case {
        const char *name;
        std::function<void(Store &, const ItemRecord &)> take;
    };
    const Case cases[] = {{"deleted", [](Store &store, const ItemRecord &item) { store.remove(item); }},
                          {"moved", [this](Store &store, const ItemRecord &item) { store.move(item, m_done); }}};
    for (const Case &each : cases) {
        SCOPED_TRACE(each.name);
        const auto other = open();
        const ItemRecord mine = m_store->insert(m_inbox, withSubject("x"));
        each.take(*other, mine);
        EXPECT_EQ(failureOf([&] { m_store->save(mine); }), failures::itemGone);
        EXPECT_EQ(failureOf([&] { m_store->move(mine, m_done); }), failures::itemGone);
        EXPECT_EQ(failureOf([&] { m_store->remove(mine); }), failures::itemGone);
    }
    ItemRecord never;
    never.id = 999999;
    never.folder = m_inbox;
    EXPECT_EQ(failureOf([&] { m_store->save(never); }), failures::itemGone);
    EXPECT_EQ(failureOf([&] { m_store->copy(never.id); }), failures::itemGone);
    EXPECT_FALSE(m_store->item(never.id).has_value());
}

TEST_F(ItemsTest, AMoveTakesAlongWhatOthersSavedAndArrivesLast) {
    const ItemRecord first = m_store->insert(m_inbox, withSubject("first"), everyPart("p"));
    m_store->insert(m_done, withSubject("there before"));
    const auto other = open();
    ItemRecord theirs = other->item(first.id).value();
    theirs.subject = "renamed";
    other->save(theirs);
    const ItemRecord moved = m_store->move(first, m_done);
    EXPECT_EQ(moved.entryId, first.entryId);
    EXPECT_GT(moved.arrival, first.arrival);
    EXPECT_EQ(subjects(*m_store, m_done), QStringList({"there before", "renamed"}));
    EXPECT_EQ(m_store->count(m_inbox), 0);
    EXPECT_TRUE(partsOf(*m_store, first.id) == everyPart("p"));
    EXPECT_EQ(m_store->find(m_done, {{"text", "P"}}).value().id, first.id);
    EXPECT_FALSE(m_store->find(m_inbox, {{"text", "P"}}).has_value());
    EXPECT_EQ(m_store->save(moved).version, moved.version + 1);
    EXPECT_EQ(failureOf([&] { m_store->move(moved, 4711); }), failures::notFound);
    EXPECT_EQ(failureOf([&] { m_store->insert(4711, {}); }), failures::notFound);
}

TEST_F(ItemsTest, NumbersAreNeverUsedAgain) {
    const ItemRecord first = m_store->insert(m_inbox, {});
    m_store->remove(first);
    reopen();
    const ItemRecord second = m_store->insert(m_inbox, {});
    EXPECT_GT(second.id, first.id);
    EXPECT_FALSE(m_store->itemByEntryId(first.entryId).has_value());
}

TEST_F(ItemsTest, EntryIdentifiersAreFoundInTheirOwnStoreOnly) {
    const auto other = open("public.store");
    const ItemRecord item = m_store->insert(m_inbox, {});
    EXPECT_EQ(item.entryId.size(), 48);
    EXPECT_EQ(m_store->storeId().size(), 40);
    EXPECT_NE(m_store->storeId(), other->storeId());
    EXPECT_EQ(m_store->itemByEntryId(item.entryId.toLower()), item);
    EXPECT_FALSE(m_store->folderByEntryId(item.entryId).has_value());
    const FolderRecord inbox = m_store->folder(m_inbox);
    EXPECT_EQ(inbox.entryId.size(), 48);
    EXPECT_EQ(m_store->folderByEntryId(inbox.entryId), inbox);
    EXPECT_FALSE(m_store->itemByEntryId(inbox.entryId).has_value());
    other->insert(folderNamed(*other, "Inbox"), {});
    EXPECT_FALSE(other->itemByEntryId(item.entryId).has_value());
    const QStringList noIdentifiers = oddTexts() + QStringList{QString(48, u'0'), QString(48, u'F'),
                                                               item.entryId + u'0', item.entryId.chopped(1) + u'é'};
    for (const QString &text : noIdentifiers)
        EXPECT_FALSE(m_store->itemByEntryId(text).has_value()) << text.toStdString();
}

TEST_F(ItemsTest, CommitsAreNoticedWhoeverMakesThem) {
    const auto other = open();
    const qint64 before = m_store->lastArrival();
    StoreRevision seen = m_store->revision();
    StoreRevision seenByOther = other->revision();
    EXPECT_EQ(m_store->revision(), seen);
    m_store->insert(m_inbox, withSubject("mine"));
    EXPECT_NE(std::exchange(seen, m_store->revision()), m_store->revision());
    EXPECT_NE(std::exchange(seenByOther, other->revision()), other->revision());
    other->insert(m_inbox, withSubject("theirs"));
    other->insert(m_done, withSubject("elsewhere"));
    EXPECT_NE(std::exchange(seen, m_store->revision()), m_store->revision());
    EXPECT_EQ(m_store->revision(), seen);
    QStringList arrived;
    for (const ItemRecord &item : m_store->itemsArrivedAfter(m_inbox, before))
        arrived << item.subject;
    EXPECT_EQ(arrived, QStringList({"mine", "theirs"}));
    EXPECT_EQ(m_store->itemsArrivedAfter(m_inbox, before, 1).size(), 1);
}

} // namespace desk

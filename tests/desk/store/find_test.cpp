// Look-ups: which item is found, and that no look-up walks through the folder.

#include "storefixture.h"

#include "desk/store/connection.h"
#include "desk/store/search.h"

namespace desk {

using Conditions = QList<Condition>;

class FindTest : public StoreTest {
  protected:
    std::unique_ptr<Store> m_store = open();
    FolderId m_folder = folderNamed(*m_store, QStringLiteral("Tickets"));
    FolderId m_other = folderNamed(*m_store, QStringLiteral("Other"));

    ItemRecord add(const QString &subject, const QList<Property> &properties = {}) {
        return m_store->insert(m_folder, withSubject(subject), {.properties = properties});
    }
    /// The subjects of all that meet the conditions, by walking from one to the next.
    QStringList found(const Conditions &conditions) {
        QStringList subjects;
        qint64 arrival = 0;
        while (const auto item = m_store->find(m_folder, conditions, arrival)) {
            subjects << item->subject;
            arrival = item->arrival;
        }
        return subjects;
    }
};

TEST_F(FindTest, FieldsOfEveryKindAreCompared) {
    ItemRecord one = withSubject(QStringLiteral("one"));
    one.senderName = QStringLiteral("ΣΊΣΥΦΟΣ Ärger");
    one.email1Address = QStringLiteral("Ann@Example.com");
    one.company = QStringLiteral("Bee");
    one.unread = true;
    one.importance = 2;
    one.receivedAt = DateTime{38000.5};
    m_store->insert(m_folder, one);
    ItemRecord two = withSubject(QStringLiteral("two"));
    two.billingInformation = QStringLiteral("12");
    m_store->insert(m_folder, two);
    m_store->insert(m_other, withSubject(QStringLiteral("one")));

    struct Case {
        Condition condition;
        QStringList expected;
    };
    const QStringList onlyOne{QStringLiteral("one")};
    const QStringList onlyTwo{QStringLiteral("two")};
    const QStringList both = onlyOne + onlyTwo;
    const Case cases[] = {
        {{Field::Subject, "ONE"}, onlyOne},
        {{Field::Subject, "on"}, {}},
        {{Field::SenderName, "σίσυφος äRGER"}, onlyOne},
        {{Field::Email1Address, "ann@example.COM"}, onlyOne},
        {{Field::MessageClass, "ipm.note"}, both},
        {{Field::BillingInformation, ""}, onlyOne},
        {{Field::BillingInformation, "12"}, onlyTwo},
        {{Field::BillingInformation, qint32{12}}, onlyTwo},
        {{Field::Company, "bee"}, onlyOne},
        {{Field::Company, ""}, onlyTwo},
        {{Field::Unread, true}, onlyOne},
        {{Field::Unread, false}, onlyTwo},
        {{Field::Unread, "True"}, onlyOne},
        {{Field::Unread, "perhaps"}, {}},
        {{Field::Importance, qint32{2}}, onlyOne},
        {{Field::Importance, "1"}, onlyTwo},
        {{Field::Importance, "high"}, {}},
        {{Field::ReceivedAt, DateTime{38000.5}}, onlyOne},
        {{Field::ReceivedAt, "2004-01-14 12:00:00"}, onlyOne},
    };
    for (const Case &each : cases)
        EXPECT_EQ(found({each.condition}), each.expected) << (&each - cases);
    EXPECT_EQ(found({}), both);
}

TEST_F(FindTest, CustomPropertiesAreComparedByWhatTheySay) {
    const auto property = [](PropertyType type, const Value &value) {
        return QList<Property>{{.name = QStringLiteral("Ticket ID"), .type = type, .value = value}};
    };
    add(QStringLiteral("text"), property(PropertyType::Text, "12"));
    add(QStringLiteral("number"), property(PropertyType::Number, 12.0));
    add(QStringLiteral("half"), property(PropertyType::Number, 0.1));
    add(QStringLiteral("date"), property(PropertyType::Date, DateTime{38000.25}));
    add(QStringLiteral("yes"), property(PropertyType::YesNo, true));
    add(QStringLiteral("empty"), property(PropertyType::Text, ""));
    add(QStringLiteral("unset"), property(PropertyType::Number, {}));
    add(QStringLiteral("without"));
    const QString longText = QString(5000, u'L');
    add(QStringLiteral("long"), property(PropertyType::Text, longText));

    struct Case {
        Value value;
        QStringList expected;
    };
    const Case cases[] = {
        {"12", {QStringLiteral("text"), QStringLiteral("number")}},
        {12.0, {QStringLiteral("text"), QStringLiteral("number")}},
        {0.1, {QStringLiteral("half")}},
        {DateTime{38000.25}, {QStringLiteral("date")}},
        {true, {QStringLiteral("yes")}},
        {"", {QStringLiteral("empty"), QStringLiteral("unset"), QStringLiteral("without")}},
        {longText.toLower(), {QStringLiteral("long")}},
        {longText + QStringLiteral("x"), {}},
    };
    for (const Case &each : cases)
        EXPECT_EQ(found({{QStringLiteral("TICKET id"), each.value}}), each.expected) << (&each - cases);
    EXPECT_EQ(found({{QStringLiteral("Ticket"), "12"}}), QStringList());
}

TEST_F(FindTest, AllConditionsMustHoldAndTheFirstByArrivalIsFound) {
    for (int i = 0; i < 600; ++i)
        add(QString::number(i % 3),
            {{.name = QStringLiteral("Status"), .value = i % 2 == 0 ? "open" : "closed"},
             {.name = QStringLiteral("Number"), .type = PropertyType::Number, .value = static_cast<double>(i)}});
    const Conditions open{{Field::Subject, "1"}, {QStringLiteral("status"), "Open"}, {Field::Unread, false}};
    EXPECT_EQ(found(open).size(), 100);
    EXPECT_EQ(m_store->properties(m_store->find(m_folder, open).value().id)[1].value, Value(4.0));
    EXPECT_EQ(found(open + Conditions{{QStringLiteral("number"), 10.0}}), QStringList(QStringLiteral("1")));
    EXPECT_EQ(found(open + Conditions{{QStringLiteral("number"), 11.0}}), QStringList());
    EXPECT_EQ(found(open + Conditions{{QStringLiteral("Missing"), ""}, {Field::Company, ""}}).size(), 100);
}

TEST_F(FindTest, WhatIsFoundFollowsSavesMovesAndDeletions) {
    ItemRecord item = add(QStringLiteral("before"), {{.name = QStringLiteral("ID"), .value = "1"}});
    item.subject = QStringLiteral("after");
    item = m_store->save(item, {.properties = QList<Property>{{.name = QStringLiteral("id"), .value = "2"}}});
    EXPECT_EQ(found({{Field::Subject, "before"}}), QStringList());
    EXPECT_EQ(found({{QStringLiteral("ID"), "1"}}), QStringList());
    EXPECT_EQ(found({{Field::Subject, "AFTER"}, {QStringLiteral("ID"), "2"}}), QStringList(QStringLiteral("after")));
    item = m_store->save(item, {.properties = QList<Property>()});
    EXPECT_EQ(found({{QStringLiteral("ID"), "2"}}), QStringList());
    item = m_store->move(item, m_other);
    EXPECT_EQ(found({{Field::Subject, "after"}}), QStringList());
    item = m_store->move(item, m_folder);
    m_store->remove(item);
    EXPECT_EQ(found({{Field::Subject, "after"}}), QStringList());
}

/// Each look-up as the engine means to run it: on the index of the condition that leads, in its order.
TEST_F(FindTest, EveryIndexedLookUpUsesItsIndexAndSortsNothing) {
    for (int i = 0; i < 300; ++i)
        add(QStringLiteral("same"), {{.name = QStringLiteral("Status"), .value = "open"},
                                     {.name = QStringLiteral("ID"), .value = QString::number(i)}});
    Connection connection(path(), std::chrono::milliseconds(1000));
    struct Case {
        Conditions conditions;
        const char *index;
    };
    const Condition status{QStringLiteral("Status"), "open"};
    const Condition subject{Field::Subject, "same"};
    const Case cases[] = {
        {{{Field::MessageClass, "IPM.Note"}}, "items_by_message_class"},
        {{subject}, "items_by_subject"},
        {{{Field::BillingInformation, "1"}}, "items_by_billing_information"},
        {{{Field::SenderName, "x"}}, "items_by_sender_name"},
        {{{Field::FullName, "x"}}, "items_by_full_name"},
        {{{Field::Email1Address, "x"}}, "items_by_email1_address"},
        {{status}, "properties_by_value"},
        {{{Field::Unread, false}, subject}, "items_by_subject"},
        {{subject, {Field::FullName, "x"}}, "items_by_full_name"},
        {{subject, status, {QStringLiteral("ID"), "7"}}, "properties_by_value"},
        {{{QStringLiteral("ID"), ""}, {Field::SenderName, "x"}}, "items_by_sender_name"},
        {{}, "items_by_arrival"},
    };
    for (const Case &each : cases) {
        const Search search(connection, m_folder, each.conditions, 5);
        QStringList plan;
        connection.each("EXPLAIN QUERY PLAN " + search.sql(), search.binds(),
                        [&plan](const Row &row) { plan << row.text(3); });
        ASSERT_FALSE(plan.isEmpty());
        EXPECT_TRUE(plan.first().contains(QLatin1String(each.index))) << plan.join(u'\n').toStdString();
        for (const QString &step : plan)
            EXPECT_FALSE(step.startsWith(QStringLiteral("SCAN")) || step.contains(QStringLiteral("TEMP B-TREE")))
                << plan.join(u'\n').toStdString();
    }
    // The condition with the fewest matches leads, wherever it stands in the list.
    const Search search(connection, m_folder, {status, {QStringLiteral("ID"), "7"}, subject}, 0);
    EXPECT_TRUE(std::ranges::any_of(search.binds().first(2),
                                    [](const Bind &bind) { return bind.value == QVariant(QStringLiteral("id")); }));
}

} // namespace desk

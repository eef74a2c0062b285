// Look-ups: which item is found, and that no look-up walks through the folder.

#include "storefixture.h"

#include "desk/store/connection.h"
#include "desk/store/search.h"

namespace desk {

using Conditions = QList<Condition>;

class FindTest : public StoreTest {
  protected:
    std::unique_ptr<Store> m_store = open();
    FolderId m_folder = folderNamed(*m_store, "Tickets");
    FolderId m_other = folderNamed(*m_store, "Other");

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
    ItemRecord one = withSubject("one");
    one.senderName = "ΣΊΣΥΦΟΣ Ärger";
    one.email1Address = "Ann@Example.com";
    one.company = "Bee";
    one.unread = true;
    one.importance = 2;
    one.receivedAt = DateTime{38000.5};
    m_store->insert(m_folder, one);
    ItemRecord two = withSubject("two");
    two.billingInformation = "12";
    m_store->insert(m_folder, two);
    m_store->insert(m_other, withSubject("one"));

    struct Case {
        Condition condition;
        QStringList expected;
    };
    const QStringList onlyOne{"one"};
    const QStringList onlyTwo{"two"};
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
        return QList<Property>{{.name = "Ticket ID", .type = type, .value = value}};
    };
    add("text", property(PropertyType::Text, "12"));
    add("number", property(PropertyType::Number, 12.0));
    add("half", property(PropertyType::Number, 0.1));
    add("date", property(PropertyType::Date, DateTime{38000.25}));
    add("yes", property(PropertyType::YesNo, true));
    add("empty", property(PropertyType::Text, ""));
    add("unset", property(PropertyType::Number, {}));
    add("without");
    const QString longText = QString(5000, u'L');
    add("long", property(PropertyType::Text, longText));

    struct Case {
        Value value;
        QStringList expected;
    };
    const Case cases[] = {
        {"12", {"text", "number"}},
        {12.0, {"text", "number"}},
        {0.1, {"half"}},
        {DateTime{38000.25}, {"date"}},
        {true, {"yes"}},
        {"", {"empty", "unset", "without"}},
        {longText.toLower(), {"long"}},
        {longText + QStringLiteral("x"), {}},
    };
    for (const Case &each : cases)
        EXPECT_EQ(found({{"TICKET id", each.value}}), each.expected) << (&each - cases);
    EXPECT_EQ(found({{"Ticket", "12"}}), QStringList());
}

TEST_F(FindTest, AllConditionsMustHoldAndTheFirstByArrivalIsFound) {
    for (int i = 0; i < 600; ++i)
        add(QString::number(i % 3),
            {{.name = "Status", .value = i % 2 == 0 ? "open" : "closed"},
             {.name = "Number", .type = PropertyType::Number, .value = static_cast<double>(i)}});
    const Conditions open{{Field::Subject, "1"}, {"status", "Open"}, {Field::Unread, false}};
    EXPECT_EQ(found(open).size(), 100);
    EXPECT_EQ(m_store->properties(m_store->find(m_folder, open).value().id)[1].value, Value(4.0));
    EXPECT_EQ(found(open + Conditions{{"number", 10.0}}), QStringList("1"));
    EXPECT_EQ(found(open + Conditions{{"number", 11.0}}), QStringList());
    EXPECT_EQ(found(open + Conditions{{"Missing", ""}, {Field::Company, ""}}).size(), 100);
}

/// Each look-up as the engine means to run it: on the index of the condition that leads, in its order.
TEST_F(FindTest, EveryIndexedLookUpUsesItsIndexAndSortsNothing) {
    for (int i = 0; i < 300; ++i)
        add("same", {{.name = "Status", .value = "open"}, {.name = "ID", .value = QString::number(i)}});
    Connection connection(path(), std::chrono::milliseconds(1000));
    struct Case {
        Conditions conditions;
        const char *index;
    };
    const Condition status{"Status", "open"};
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
        {{subject, status, {"ID", "7"}}, "properties_by_value"},
        {{{"ID", ""}, {Field::SenderName, "x"}}, "items_by_sender_name"},
        {{}, "items_by_arrival"},
        {{{"ID", 250.0, Condition::Kind::MayReach}, subject}, "items_by_subject"},
    };
    for (const Case &each : cases) {
        const Search search(connection, m_folder, each.conditions, 5);
        QStringList plan;
        connection.each("EXPLAIN QUERY PLAN " + search.sql(), search.binds(),
                        [&plan](const Row &row) { plan << row.text(3); });
        ASSERT_FALSE(plan.isEmpty());
        EXPECT_TRUE(plan.first().contains(QLatin1String(each.index))) << plan.join(u'\n').toStdString();
        for (const QString &step : plan)
            EXPECT_FALSE(step.startsWith("SCAN") || step.contains("TEMP B-TREE")) << plan.join(u'\n').toStdString();
    }
    // A number to be reached leads where nothing is looked up: the items are not gone through for it.
    const Search reaching(connection, m_folder, {{"ID", 250.0, Condition::Kind::MayReach}}, 0);
    QStringList plan;
    connection.each("EXPLAIN QUERY PLAN " + reaching.sql(), reaching.binds(),
                    [&plan](const Row &row) { plan << row.text(3); });
    EXPECT_TRUE(plan.first().contains("COVERING INDEX properties_by_value")) << plan.join(u'\n').toStdString();
    // The condition with the fewest matches leads, wherever it stands in the list.
    const Search search(connection, m_folder, {status, {"ID", "7"}, subject}, 0);
    EXPECT_TRUE(
        std::ranges::any_of(search.binds().first(2), [](const Bind &bind) { return bind.value == QVariant("id"); }));
}

} // namespace desk

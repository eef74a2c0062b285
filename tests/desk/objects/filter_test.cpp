// What Items.Find understands.

#include "deskfixture.h"

#include "desk/content/filter.h"

namespace {

class FilterTest : public DeskTest {
  protected:
    void SetUp() override {
        const struct {
            const char *subject, *id, *name;
            double minutes;
            bool done;
            int importance;
        } items[] = {{"Printer", "12", "Bo", 5, true, 1},
                     {"Network", "13", "O'Neill", 10, false, 2},
                     {"Say \"no\"", "", "it's", 12, false, 0},
                     {"Printer", "112", "a' and [x] = 'b", 0, false, 1}};
        for (const auto &each : items) {
            const Handle item = newItem(folder(6), "IPM.Post.Form", each.subject);
            const Handle properties = item.of("UserProperties");
            if (*each.id)
                properties.of("Add", {"Ticket ID", 1}).put("Value", each.id);
            properties.of("Add", {"Caller name", 1}).put("Value", each.name);
            properties.of("Add", {"Minutes", 3}).put("Value", each.minutes);
            properties.of("Add", {"Done", 6}).put("Value", each.done);
            properties.of("Add", {"Due", 5}).put("Value", DateTime::fromDate(2026, 3, 10 + each.importance));
            item.put("Importance", each.importance);
            item.call("Save");
        }
    }

    /// The positions of the items that a filter finds, such as "1 4".
    [[nodiscard]] std::string found(const QString &filter) const {
        const Handle items = folder(6).of("Items");
        QStringList positions;
        for (Handle item = items.of("Find", {filter}); !item.isNothing(); item = items.of("FindNext")) {
            for (int i = 1; i <= 4; ++i) {
                if (items.of("Item", {i}).text("EntryID") == item.text("EntryID"))
                    positions.append(QString::number(i));
            }
        }
        return positions.join(u' ').toStdString();
    }
};

TEST_F(FilterTest, FindsWhatMeetsEveryCondition) {
    const std::pair<const char *, const char *> cases[] = {
        {"[Ticket ID] = '12'", "1"},
        {"[Ticket ID] ='12'", "1"},
        {"[ticket id]=\"12\"", "1"},
        {"[Ticket ID] = 12", "1"},
        {"[Ticket ID] = '1'", ""},
        {"[Ticket ID] = ''", "3"},
        {"[Subject] = 'PRINTER'", "1 4"},
        {"[Subject] = \"Say \"\"no\"\"\"", "3"},
        {"[Subject] = 'Say \"no\"'", "3"},
        {"[Caller name] = 'O''Neill'", "2"},
        {"[Caller name] = 'O'Neill'", "2"},
        {"[Caller name] = 'it''s'", "3"},
        {"[Caller name] = 'a'' and [x] = ''b'", "4"},
        {"[Subject] = 'Printer' and [Importance] = 1 AND [Ticket ID] = '112'", "4"},
        {"[Subject] = 'Printer' and [Importance] = 2", ""},
        {"[Importance] > 0 and [Importance] <> 2", "1 4"},
        {"[Minutes] >= 10", "2 3"},
        {"[Minutes] < 10 and [Done] = True", "1"},
        {"[Minutes] = 10", "2"},
        {"[Done] = False", "2 3 4"},
        {"[Due] > '2026-03-11'", "2"},
        {"[MessageClass] = 'IPM.Post.Form' and [Minutes] = 0", "4"},
        {"[Ticket ID] > 12", "2 4"},
        {"[Ticket ID] >= 13 and [Ticket ID] <= 100", "2"},
        {"[Ticket ID] > 9 and [Subject] = 'Printer'", "1 4"},
        {"[Ticket ID] <> 12", "2 3 4"},
        {"[Caller name] > 1", ""},
        {"[Minutes] > 9.5 and [Minutes] >= 12", "3"},
        {"[Missing] > -1", ""},
        {"[Missing] = 'x'", ""},
        {"[Missing] = ''", "1 2 3 4"},
    };
    for (const auto &[filter, expected] : cases)
        EXPECT_EQ(found(filter), expected) << filter;
}

TEST_F(FilterTest, RefusesWhatIsNoFilter) {
    constexpr qint32 invalidFilter = failures::automation(0x80020009);
    for (const char *text : {"", "Ticket ID = '12'", "[Ticket ID]", "[Ticket ID] =", "[Ticket ID] = '12", "[] = '1'",
                             "[A] = 'x' or [B] = 'y'", "[A] = 'x' and", "[A] ~ 'x'", "[A] = twelve", "[A = 'x'"})
        EXPECT_EQ(failureOf([&] { folder(6).of("Items").call("Find", {text}); }), invalidFilter) << text;
}

TEST_F(FilterTest, FindingGoesOnFromItemToItemPerObject) {
    const Handle one = folder(6).of("Items");
    const Handle other = folder(6).of("Items");
    const QString first = one.of("Find", {"[Subject] = 'Printer'"}).text("EntryID");
    EXPECT_TRUE(other.of("FindNext").isNothing());
    EXPECT_EQ(other.of("Find", {"[Subject] = 'Network'"}).text("Subject"), "Network");
    EXPECT_NE(one.of("FindNext").text("EntryID"), first);
    EXPECT_TRUE(one.of("FindNext").isNothing());
}

} // namespace

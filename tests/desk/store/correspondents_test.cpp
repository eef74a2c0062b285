// What a store remembers of correspondents: machines, and how much was sent within the hour.

#include "desk/store/correspondents.h"
#include "storefixture.h"

namespace desk {
namespace {

class CorrespondentsTest : public StoreTest {
  protected:
    std::unique_ptr<Store> store = open();
    const DateTime noon{DateTime::fromDate(2024, 3, 5).days + 0.5};

    [[nodiscard]] static DateTime after(DateTime moment, int minutes) {
        return DateTime::fromQt(moment.toQt().addSecs(60LL * minutes));
    }
    QString admit(const QStringList &addresses, const QString &message, int most, DateTime now) {
        return Correspondents(*store).admit(addresses, message, most, now).value_or("(yes)");
    }
};

TEST_F(CorrespondentsTest, TheLatestMessageCountsWhateverElseIsKnown) {
    EXPECT_EQ(Correspondents(*store).lastKind("cal@example.org"), 0);
    Correspondents(*store).note("cal@example.org", 0);
    for (const QString &odd : oddTexts())
        Correspondents(*store).note(odd, 2);
    for (const int kind : {3, 3, 1, 0, 4}) {
        Correspondents(*store).note("Cal@Example.org ", kind);
        store = open();
        EXPECT_EQ(Correspondents(*store).lastKind("cal@example.ORG"), kind);
    }
    EXPECT_EQ(Correspondents(*store).lastKind("'; DROP TABLE items; --"), 2);
    EXPECT_EQ(Correspondents(*store).lastKind(""), 0) << "nobody is no correspondent";
}

TEST_F(CorrespondentsTest, AnHourTakesSoManyToEachAndNoMore) {
    const QString cal = "cal@example.org";
    const QString bo = "bo@example.org";
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(admit({cal}, QString::number(i), 3, after(noon, 10 * i)), "(yes)");
    EXPECT_EQ(admit({"CAL@example.org"}, "new", 3, after(noon, 59)), "CAL@example.org");
    EXPECT_EQ(admit({cal}, "2", 3, after(noon, 59)), "(yes)") << "a message that is tried again is the same one";
    EXPECT_EQ(admit({bo, cal}, "both", 3, after(noon, 59)), cal);
    EXPECT_EQ(admit({bo}, "x", 1, after(noon, 59)), "(yes)") << "what did not go out was not counted for the other";
    store = open();
    EXPECT_EQ(admit({cal}, "new", 3, after(noon, 59)), cal);
    EXPECT_EQ(admit({cal}, "new", 3, after(noon, 60)), "(yes)") << "the first is an hour old";
    EXPECT_EQ(admit({cal}, "newer", 3, after(noon, 61)), cal);
}

/// A day in the past or an hour in autumn: nobody gets more than twice as many, and nobody is shut out for long.
TEST_F(CorrespondentsTest, AClockThatIsPutBackShutsNobodyOut) {
    EXPECT_EQ(admit({"cal@example.org"}, "1", 1, noon), "(yes)");
    EXPECT_EQ(admit({"cal@example.org"}, "2", 1, after(noon, -30)), "cal@example.org");
    EXPECT_EQ(admit({"cal@example.org"}, "2", 1, after(noon, -61)), "(yes)");
    EXPECT_EQ(admit({"cal@example.org"}, "3", 1, after(noon, 24 * 60)), "(yes)");
}

TEST_F(CorrespondentsTest, TwoProgramsCountTogether) {
    const auto other = open();
    int counted = 0;
    for (int i = 0; i < 6; ++i) {
        Store &either = i % 2 == 0 ? *store : *other;
        counted += Correspondents(either).admit({"cal@example.org"}, QString::number(i), 4, noon) ? 0 : 1;
    }
    EXPECT_EQ(counted, 4);
    Correspondents(*other).note("cal@example.org", 5);
    EXPECT_EQ(Correspondents(*store).lastKind("cal@example.org"), 5);
}

} // namespace
} // namespace desk

#include "platform/value/convert.h"
#include "platform/value/filelock.h"
#include "platform/value/processlocal.h"
#include "support/child.h"
#include "support/environment.h"
#include "support/steps.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <algorithm>
#include <thread>

namespace {

class Conversions : public testing::Test {
  protected:
    void SetUp() override { Region::set(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void TearDown() override { Region::set(std::nullopt); }
};

TEST_F(Conversions, IntegersRoundToEvenAndOverflow) {
    struct Case {
        Value value;
        std::optional<qint16> result;
        qint32 failure;
    };
    const std::vector<Case> cases = {
        {0.5, 0, 0},
        {1.5, 2, 0},
        {2.5, 2, 0},
        {-0.5, 0, 0},
        {-1.5, -2, 0},
        {32767.4, 32767, 0},
        {32767.5, {}, failures::overflow},
        {-32768.5, -32768, 0},
        {qint32{40000}, {}, failures::overflow},
        {true, -1, 0},
        {Value(), 0, 0},
        {" 12 ", 12, 0},
        {"1,234", 1234, 0},
        {"1e3", 1000, 0},
        {"&HFFFF", -1, 0},
        {"12x", {}, failures::typeMismatch},
        {"", {}, failures::typeMismatch},
        {"1e999", {}, failures::overflow},
        {Value::Null(), {}, failures::invalidNull},
        {Value::Missing(), {}, failures::typeMismatch},
        {Value::nothing(), {}, failures::objectNotSet},
    };
    for (const Case &c : cases) {
        qint16 result = 0;
        EXPECT_EQ(failureOf([&] { result = toInt16(c.value); }), c.failure) << c.value.kindName().toStdString();
        if (c.result) {
            EXPECT_EQ(result, *c.result);
        }
    }
    EXPECT_EQ(failureOf([] { (void)toInt32(2147483647.5); }), failures::overflow);
    EXPECT_EQ(toInt32(qint32{2147483647}), 2147483647);
}

TEST_F(Conversions, MoneyKeepsFourDecimals) {
    EXPECT_EQ(Currency::fromDouble(1.03125).scaled(), 10312); // the half goes to the even neighbour
    EXPECT_EQ(Currency::fromDouble(1.09375).scaled(), 10938);
    EXPECT_EQ(failureOf([] { (void)Currency::fromDouble(1e15); }), failures::overflow);
}

TEST_F(Conversions, TextsOfEveryKind) {
    const std::pair<Value, const char *> cases[] = {
        {Value(), ""},
        {true, "True"},
        {0.1 + 0.2, "0.3"},
        {1e20, "1E+20"},
        {Currency::fromScaled(999999), "99.9999"},
        {Currency::fromScaled(-1), "-0.0001"},
        {Currency::fromScaled(125000), "12.5"},
        {Currency::fromScaled(std::numeric_limits<qint64>::min()), "-922337203685477.5808"}};
    for (const auto &[value, text] : cases)
        EXPECT_EQ(toText(value), text);
    EXPECT_EQ(failureOf([] { (void)toText(Value::Null()); }), failures::invalidNull);
    Region::set(QLocale(QLocale::German));
    EXPECT_EQ(toText(1.5), "1,5");
    EXPECT_EQ(toDouble("1.234,5"), 1234.5);
}

TEST_F(Conversions, NumericAndDateAreToldApart) {
    for (const Value &number : {Value("-12.5"), Value()})
        EXPECT_TRUE(isNumeric(number)) << number.kindName().toStdString();
    for (const Value &other : {Value(Value::Null()), Value(DateTime{1}), Value("1.2.3"), Value("--1")})
        EXPECT_FALSE(isNumeric(other)) << other.kindName().toStdString();
    for (const Value &date : {Value(DateTime{}), Value("8:00:00 AM")})
        EXPECT_TRUE(isDate(date)) << date.kindName().toStdString();
    for (const char *other : {"12", "25:00", "2/30/2026", "tomorrow"})
        EXPECT_FALSE(isDate(other)) << other;
}

TEST(DateTimes, EveryRegionReadsWhatItWrites) {
    const QList<QLocale> regions =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
    const DateTime day = DateTime::fromDate(2026, 2, 11);
    const std::vector<DateTime> moments = {day,
                                           {day.days + DateTime::fromTime(0, 0, 1).days},
                                           {day.days + DateTime::fromTime(12, 30, 0).days},
                                           {day.days + DateTime::fromTime(23, 59, 59).days},
                                           DateTime::fromTime(8, 0, 0),
                                           {0},
                                           DateTime::fromDate(1899, 1, 31),
                                           DateTime::fromDate(2029, 12, 3)};
    for (const QLocale &region : regions) {
        Region::set(region);
        for (const DateTime moment : moments) {
            const QString text = formatDateTime(moment);
            const std::optional<DateTime> read = parseDateTime(text);
            ASSERT_TRUE(read) << region.name().toStdString() << ' ' << text.toStdString();
            EXPECT_NEAR(read->days, moment.days, 1e-9) << region.name().toStdString() << ' ' << text.toStdString();
        }
        EXPECT_EQ(parseDateTime("5:00:00 PM")->timeOfDay().hour, 17) << region.name().toStdString();
        EXPECT_EQ(parseDateTime("2026-11-22T10:11:12")->month(), 11);
    }
    Region::set(std::nullopt);
}

TEST_F(Conversions, ADayThatIsNoMonthIsReadInTheOrderOfEveryRegion) {
    const DateTime moment{DateTime::fromDate(2026, 4, 13).days + DateTime::fromTime(14, 5, 9).days};
    const QList<QLocale> regions =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
    for (const QLocale &writer : regions) {
        const QString text = formatDateTime(moment, writer);
        for (const char *reader : {"en_US", "de_DE", "sv_SE", "ja_JP", "ar_EG"}) {
            const std::optional<DateTime> read = parseDateTime(text, QLocale(reader));
            EXPECT_TRUE(read && std::abs(read->days - moment.days) < 1e-8)
                << text.toStdString() << " of " << writer.name().toStdString() << " in " << reader;
        }
    }
}

TEST_F(Conversions, RegionsAreNamedByLanguageAndCountry) {
    for (const char *name : {"de_DE", "de-DE", "EN_gb", "zh_Hant_TW", "sr-Latn-RS", "pt_BR"})
        EXPECT_TRUE(Region::named(name)) << name;
    EXPECT_EQ(Region::named("en-GB")->territory(), QLocale::UnitedKingdom);
    for (const char *name : {"", "de", "C", "xx_XX", "de_", "_DE", "de_US", "german", "de_DE.UTF-8", "en_GB;x"})
        EXPECT_FALSE(Region::named(name)) << name;
}

TEST_F(Conversions, ADateWithoutAYearIsInThatOfTheClock) {
    Clock::set(DateTime::fromDate(1999, 12, 31));
    for (const char *text : {"4 March", "March 4", "3/4"}) {
        const std::optional<DateTime> read = parseDateTime(text);
        ASSERT_TRUE(read) << text;
        EXPECT_EQ(*read, DateTime::fromDate(1999, 3, 4)) << text;
    }
    Clock::release();
}

TEST(DateTimes, AnHourThatTheClockLeavesOutIsKept) {
    const support::EnvironmentValue zone("TZ", "Europe/Stockholm");
    const DateTime moment{DateTime::fromDate(2026, 3, 29).days + DateTime::fromTime(2, 30, 0).days};
    EXPECT_EQ(moment.isoText(), "2026-03-29 02:30:00");
    EXPECT_EQ(moment.toQt().toUTC(), QDateTime(QDate(2026, 3, 29), QTime(1, 30), Qt::UTC));
    EXPECT_EQ(parseDateTime(formatDateTime(moment))->days, moment.days);
}

TEST(DateTimes, DaysBeforeTheFirstCountTheirTimeForward) {
    const DateTime moment{-1.25};
    EXPECT_EQ(moment.day(), 29);
    EXPECT_EQ(moment.timeOfDay().hour, 6);
    EXPECT_EQ(moment.dateOnly().days, -1);
    EXPECT_EQ(DateTime{}.year(), 1899);
    EXPECT_EQ(DateTime::fromDate(2026, 11, 22).weekdayFromMonday(), 7);
}

ProcessLocal<QString> lastWord(QStringLiteral("first"));

TEST(ProgramCopies, EachHasItsOwnVariables) {
    ProgramCopy one;
    ProgramCopy two;
    {
        const ProgramCopy::Scope inOne(one);
        lastWord = QStringLiteral("one");
        const ProgramCopy::Scope inTwo(two);
        EXPECT_EQ(*lastWord, "first");
        lastWord = QStringLiteral("two");
    }
    EXPECT_EQ(*lastWord, "first");
    const ProgramCopy::Scope inOne(one);
    EXPECT_EQ(*lastWord, "one");
    one.clear();
    EXPECT_EQ(*lastWord, "first");
}

TEST(FileLocks, OneHoldsAndAKilledHolderLeavesNothingBehind) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("lock");
    Child holder([&](int output) {
        const auto held = FileLock::take(file);
        report(output, held ? 'x' : '-');
        return ::pause();
    });
    ASSERT_EQ(holder.next(), 'x');
    EXPECT_EQ(FileLock::take(file), nullptr);
    holder.kill();
    const auto mine = FileLock::take(file);
    ASSERT_NE(mine, nullptr);
    EXPECT_EQ(FileLock::take(file), nullptr);
    EXPECT_EQ(failureOf([&] { (void)FileLock::take(folder.filePath("none/lock")); }), failures::pathNotFound);
}

// Two runs of a program that start at once must not both take themselves for the only one.
TEST(FileLocks, OfThoseWhoJoinTheFirstIsOneAndTheOthersHoldOnToo) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("lock");
    auto first = FileLock::join(file);
    auto second = FileLock::join(file);
    EXPECT_TRUE(first.isFirst);
    EXPECT_FALSE(second.isFirst);
    first.lock.reset();
    EXPECT_FALSE(FileLock::join(file).isFirst) << "the second still holds the file";
    second.lock.reset();
    for (int round = 0; round < 50; ++round) {
        std::array<FileLock::Joined, 4> all;
        std::vector<std::jthread> runs;
        for (FileLock::Joined &each : all)
            runs.emplace_back([&] { each = FileLock::join(file); });
        runs.clear();
        ASSERT_EQ(std::ranges::count_if(all, &FileLock::Joined::isFirst), 1);
    }
}

} // namespace

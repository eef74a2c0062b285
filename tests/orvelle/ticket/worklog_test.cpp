// The work log: its text, and the table that only grows.

#include "orvelle/reference/program.h"
#include "orvelle/reference/settings.h"
#include "orvelle/ticket/worklog.h"
#include "support/fakecontrol.h"

#include <random>

namespace {

Ref<cWorkDescription> row(const QString &description, DateTime date, qint16 minutes, const QString &user) {
    const auto work = Ref<cWorkDescription>::make();
    work->Description = description;
    work->WorkDate = date;
    work->Minutes = minutes;
    work->User = user;
    return work;
}

void add(cWorkDescs &log, const Ref<cWorkDescription> &work) {
    log.dicWorkDesc->Add("key " + QString::number(log.dicWorkDesc->Count()), work);
}

bool same(const cWorkDescription &left, const cWorkDescription &right) {
    return left.Description == right.Description && left.WorkDate == right.WorkDate && left.Minutes == right.Minutes &&
           left.User == right.User;
}

using WorkLogTest = ProgramTest;

struct RowCase {
    const char *name;
    QString text;
    QString description;
    DateTime date;
    qint16 minutes;
    QString user;
};

TEST_F(WorkLogTest, ReadsARow) {
    const DateTime day = DateTime::fromDate(2026, 3, 4);
    const QList<RowCase> cases{
        {"whole", "Tested\t3/4/2026\t20\tAnn", "Tested", day, 20, "Ann"},
        {"empty fields", "\t\t\t", "", {}, 0, ""},
        {"no date", "Tested\tsoon\t20\tAnn", "Tested", {}, 20, "Ann"},
        {"no minutes", "Tested\t3/4/2026\tmany\tAnn", "Tested", day, 0, "Ann"},
        {"half minutes go to the even neighbour", "T\t3/4/2026\t2.5\tAnn", "T", day, 2, "Ann"},
        {"too few parts", "Tested\t3/4/2026\t20", "", {}, 0, ""},
        {"too many parts", "Tested\ttwice\t3/4/2026\t20\tAnn", "", {}, 0, ""},
        {"no part at all", "damaged", "", {}, 0, ""},
        {"line ends in a field", "a\r\nb\t3/4/2026\t1\tAnn", "a\r\nb", day, 1, "Ann"},
    };
    for (const RowCase &one : cases) {
        SCOPED_TRACE(one.name);
        cWorkDescription work;
        work.FromString(one.text);
        EXPECT_TRUE(same(work, *row(one.description, one.date, one.minutes, one.user)));
    }
}

/// The machine's region is the United States; what counts is the helpdesk's.
TEST_F(WorkLogTest, DatesHaveTheOrderOfTheHelpdesksRegion) {
    const struct {
        const char *region;
        const char *text;
        DateTime date;
    } cases[] = {{"en_GB", "03/04/2026", DateTime::fromDate(2026, 4, 3)},
                 {"de_DE", "03.04.2026", DateTime::fromDate(2026, 4, 3)},
                 {"en_US", "13/4/2026", DateTime::fromDate(2026, 4, 13)},
                 {"en_US", "13.04.2026", DateTime::fromDate(2026, 4, 13)},
                 {"de_DE", "4/13/2026 2:05:09 PM", {DateTime::fromDate(2026, 4, 13).days + 50709 / 86400.0}},
                 {"sv_SE", "4/13/2026", DateTime::fromDate(2026, 4, 13)},
                 {"sv_SE", "13.04.2026", DateTime::fromDate(2026, 4, 13)},
                 {"de_DE", "2026-03-04", DateTime::fromDate(2026, 3, 4)},
                 {"en_US", "2026-03-04 10:00:00", {DateTime::fromDate(2026, 3, 4).days + 10 / 24.0}},
                 {"en_GB", "2026-03-04T10:00:00", {DateTime::fromDate(2026, 3, 4).days + 10 / 24.0}},
                 {"en_GB", "13/14/2026", {}}};
    for (const auto &each : cases) {
        objWorkRegion = QLocale(each.region);
        cWorkDescription work;
        work.FromString(QStringLiteral("Tested\t%1\t20\tAnn").arg(each.text));
        EXPECT_NEAR(work.WorkDate.days, each.date.days, 1e-8) << each.region << ' ' << each.text;
        cWorkDescription again;
        again.FromString(work.ToString());
        EXPECT_NEAR(again.WorkDate.days, each.date.days, 1e-8) << work.ToString().toStdString();
    }
    objWorkRegion = std::nullopt;
    EXPECT_TRUE(row("T", DateTime::fromDate(2026, 3, 4), 1, "A")->ToString().contains(QStringLiteral("\t3/4/2026\t")));
}

TEST_F(WorkLogTest, ARowThatCannotBeSplitLeavesTheFieldsAlone) {
    const auto work = row("kept", DateTime{5}, 3, "Ann");
    work->FromString("x\ty");
    EXPECT_TRUE(same(*work, *row("kept", DateTime{5}, 3, "Ann")));
    work->FromString("new\tno date\tno number\tBob");
    EXPECT_TRUE(same(*work, *row("new", DateTime{5}, 0, "Bob")));
}

struct LogCase {
    const char *name;
    QString text;
    QStringList descriptions;
};

TEST_F(WorkLogTest, ReadsALog) {
    const QList<LogCase> cases{
        {"empty", "", {}},
        {"one row", "a\t\t1\tAnn\r\n====\r\n", {"a"}},
        {"no separator behind the last", "a\t\t1\tAnn\r\n====\r\nb\t\t1\tAnn", {"a", "b"}},
        {"a damaged row is a blank one",
         "a\t\t1\tAnn\r\n====\r\nbroken\r\n====\r\nc\t\t1\tAnn\r\n====\r\n",
         {"a", "", "c"}},
        {"separators alone", "\r\n====\r\n\r\n====\r\n", {}},
        {"three equals signs part nothing", "a\r\n===\r\nb\t\t1\tAnn", {"a\r\n===\r\nb"}},
        {"equal rows both stay", "a\t\t1\tA\r\n====\r\na\t\t1\tA\r\n====\r\n", {"a", "a"}},
    };
    for (const LogCase &one : cases) {
        SCOPED_TRACE(one.name);
        cWorkDescs log;
        add(log, row("old", {}, 1, "x"));
        log.FromString(one.text);
        QStringList descriptions;
        for (const auto &work : log.dicWorkDesc->Items())
            descriptions.append(work->Description);
        EXPECT_EQ(descriptions, one.descriptions);
    }
}

TEST_F(WorkLogTest, AddsUpMinutes) {
    cWorkDescs log;
    EXPECT_EQ(log.MinutesTotal(), 0);
    add(log, row("a", {}, 32000, "x"));
    add(log, nullptr);
    add(log, row("b", {}, 767, "x"));
    EXPECT_EQ(log.MinutesTotal(), 32767);
    add(log, row("c", {}, 1, "x"));
    EXPECT_EQ(failureOf([&] { (void)log.MinutesTotal(); }), failures::overflow);
}

TEST_F(WorkLogTest, RandomLogsComeBackTheSameInEveryRegion) {
    std::mt19937 random(20260304);
    const auto upTo = [&](int last) { return std::uniform_int_distribution<int>(0, last)(random); };
    const QStringList pieces{"a", "Z", " ", "  ", "é", "漢字", "🎫", "=", "\r\n", "\n", "'", "\"", "-", "1", "/", ";"};
    const auto text = [&] {
        QString joined;
        for (int i = upTo(30); i > 0; --i)
            joined += pieces[upTo(static_cast<int>(pieces.size()) - 1)];
        return joined.replace("====", "=-=-");
    };
    for (const char *region : {"en_US", "en_GB", "de_DE", "sv_SE", "el_GR", "tr_TR", "fi_FI", "cs_CZ"}) {
        Region::set(QLocale(region));
        for (int i = 0; i < 100; ++i) {
            cWorkDescs log;
            for (int rows = upTo(12); rows > 0; --rows) {
                const DateTime date{36526.0 + upTo(20000) + (upTo(3) == 0 ? 0.0 : upTo(86399) / 86400.0)};
                add(log, row(text(), date, static_cast<qint16>(upTo(3000)), text() + "u"));
            }
            cWorkDescs again;
            again.FromString(log.ToString());
            ASSERT_EQ(again.dicWorkDesc->Count(), log.dicWorkDesc->Count()) << region << " " << i;
            for (qsizetype j = 0; j < log.dicWorkDesc->Count(); ++j) {
                const auto &was = *log.dicWorkDesc->Items()[j];
                const auto &is = *again.dicWorkDesc->Items()[j];
                ASSERT_EQ(was.Description, is.Description) << region;
                ASSERT_EQ(was.User, is.User) << region;
                ASSERT_EQ(was.Minutes, is.Minutes) << region;
                ASSERT_NEAR(was.WorkDate.days, is.WorkDate.days, 1e-8) << region << " " << was.ToString().toStdString();
            }
            ASSERT_EQ(again.ToString(), log.ToString());
        }
    }
}

TEST_F(WorkLogTest, GoesThroughAListBox) {
    FakeControl box;
    box.AddItem("");
    box.SetList(0, 1, DateTime{1});
    box.SetList(0, 2, qint16{0});
    box.SetList(0, 3, "");
    row("Tested", DateTime{46000.5}, 20, "Ann")->AddRow(box);
    cWorkDescs log;
    log.ReadFromListBox(box);
    ASSERT_EQ(log.dicWorkDesc->Keys(), (QStringList{"0", "1"}));
    EXPECT_TRUE(same(*log.dicWorkDesc->Item("1"), *row("Tested", DateTime{46000.5}, 20, "Ann")));
    log.FromString("there\t\t1\tBob\r\n====\r\n");
    log.ReadFromListBox(box);
    EXPECT_EQ(log.MinutesTotal(), 21) << "the rows of the box join those already there";
}

using WorkTableTest = DatabaseTest;

struct AppendCase {
    const char *name;
    QStringList stored, log, after;
};

TEST_F(WorkTableTest, AppendsWhatTheTableDoesNotHave) {
    const QList<AppendCase> cases{
        {"an empty log", {}, {}, {}},
        {"all new", {}, {"a", "b"}, {"a", "b"}},
        {"the later ones", {"a"}, {"a", "b", "c"}, {"a", "b", "c"}},
        {"a changed row never reaches the table", {"a"}, {"changed", "b"}, {"a", "b"}},
        {"as many", {"a", "b"}, {"x", "y"}, {"a", "b"}},
        {"a shorter log", {"a", "b", "c"}, {"a"}, {"a", "b", "c"}},
        {"equal rows", {"a"}, {"a", "a"}, {"a", "a"}},
        {"trimmed of blanks", {}, {"  x  ", "\ty"}, {"x", "\ty"}},
        {"cut", {}, {QString(300, 'x')}, {QString(254, 'x')}},
        {"cut in the middle of a sign", {}, {QString(253, 'x') + "🎫"}, {QString(253, 'x')}},
        {"cut, then trimmed", {}, {QString(250, 'x') + "      y"}, {QString(250, 'x')}},
    };
    for (const AppendCase &one : cases) {
        SCOPED_TRACE(one.name);
        newDatabase();
        for (const QString &text : one.stored)
            addRow("tblWork", {{"strWorkDescription", text}, {"intTicketID", 7}});
        addRow("tblWork", {{"strWorkDescription", "another ticket's"}, {"intTicketID", 8}});
        cWorkDescs log;
        for (const QString &text : one.log)
            add(log, row(text, {}, 1, "Ann"));
        log.WriteToDB("7");
        EXPECT_EQ(rows("Select * from tblWork where intTicketID = 7", {"strWorkDescription"}), one.after);
    }
}

TEST_F(WorkTableTest, EveryTicketNumberFits) {
    for (const char *number : {"1", "32767", "32768", "40000", "2147483647"}) {
        cWorkDescs log;
        add(log, row("Tested", DateTime{46085.58687}, 20, "Ann O'Other"));
        log.WriteToDB(number);
        cWorkDescs again;
        again.ReadFromDB(number);
        ASSERT_EQ(again.dicWorkDesc->Keys(), QStringList{"1"}) << number;
        EXPECT_TRUE(same(*again.dicWorkDesc->Item("1"), *log.dicWorkDesc->Items()[0])) << number;
    }
}

TEST_F(WorkTableTest, AnEmptyLogNeedsNoDatabaseAndNoNumber) {
    strDBPath = at("nowhere");
    subCloseConnection();
    cWorkDescs().WriteToDB("no number");
}

TEST_F(WorkTableTest, ReadingKeepsTheLogWhereTheNumberIsNone) {
    cWorkDescs log;
    add(log, row("kept", {}, 1, "x"));
    log.ReadFromDB("no number");
    EXPECT_EQ(log.dicWorkDesc->Count(), 1);
    log.ReadFromDB("99");
    EXPECT_EQ(log.dicWorkDesc->Count(), 0);
}

TEST_F(WorkTableTest, ANullEndsTheReading) {
    const auto addWork = [](const QString &text, const Value &minutes) {
        addRow("tblWork", {{"strPersonName", "Ann"},
                           {"intMinutesWorked", minutes},
                           {"dteWorkedDate", DateTime{46000}},
                           {"strWorkDescription", text},
                           {"intTicketID", 7}});
    };
    addWork("a", 1);
    addWork("b", 2);
    addWork("c", Value::Null{});
    addWork("d", 4);
    cWorkDescs log;
    log.ReadFromDB("7");
    ASSERT_EQ(log.dicWorkDesc->Keys(), (QStringList{"1", "2"}));
    EXPECT_EQ(log.MinutesTotal(), 3);
}

} // namespace

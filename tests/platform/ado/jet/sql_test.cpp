// The forms of SQL that the system uses, asked of a real file, and any text at all, asked of the translator.

#include "platform/ado/jet/fileengine.h"
#include "platform/ado/jet/sql.h"
#include "platform/ado/jet/text.h"
#include "platform/value/convert.h"

#include <random>

namespace {

class JetSql : public ::testing::Test {
  protected:
    void SetUp() override {
        plainTool(
            m_engine.file(),
            {"CREATE TABLE tblPersons (intPersonID INTEGER PRIMARY KEY, strPersonName VARCHAR(255), curRate CURRENCY)",
             "CREATE TABLE tblTickets (intTicketID INTEGER PRIMARY KEY, strTicketID VARCHAR(255), "
             "strTicketSubject VARCHAR(255), intAssignedTo SMALLINT, intMinutesWorked SMALLINT, blnClosed BOOLEAN)",
             "INSERT INTO tblPersons VALUES (1, 'Ann', 995000), (2, 'Bo', NULL)",
             QString::fromUtf8("INSERT INTO tblTickets VALUES (1, '1', 'Printer \u00DCBEL', 1, 90, -1), "
                               "(2, '2', '100% done', 1, 59, 0), (3, '3', NULL, 2, 10, -1), (4, 'x4', 'a', 9, 1, 0)")});
    }

    QString ask(const QString &sql) {
        QStringList rows;
        for (const Ref<ado::Recordset> set = openRecordset(m_connection(), sql); !set->IsEOF(); set->MoveNext()) {
            QStringList row;
            for (int at = 0; at < set->FieldCount(); ++at) {
                const Value value = set->Fields(at).Value();
                row.append(value.isNull() ? QString("Null") : toText(value));
            }
            rows.append(row.join("|"));
        }
        return rows.join(",");
    }

    FileEngine m_engine;
    std::function<Ref<ado::Connection>()> m_connection = [this] { return m_engine.connect(); };
};

TEST_F(JetSql, AnswersTheFormsThatAreAsked) {
    const QString cases[][2] = {
        {"Select intTicketID from tblTickets where blnClosed = -1  ORDER BY intTicketID DESC", "3,1"},
        {"Select intTicketID from tblTickets where blnClosed = True", "1,3"},
        {"Select intTicketID from tblTickets where strTicketID = 'X4'", "4"},
        {"Select intTicketID from tblTickets where strTicketID = \"2\"", "2"},
        {QString::fromUtf8("Select intTicketID from tblTickets where blnClosed = -1  AND ((strTicketID Like '%q%') or "
                           "(strTicketSubject Like '%\u00FCbel%')) ORDER BY intTicketID"),
         "1"},
        {"Select intTicketID from tblTickets where strTicketSubject Like '%[%]%'", "2"},
        {"Select intTicketID from tblTickets where [tblTickets.intTicketID] <= 2", "1,2"},
        {"Select iif(blnClosed=-1,'Yes','No'), intMinutesWorked/60 from tblTickets where intTicketID=1", "Yes|1.5"},
        {"SELECT IIf([intAssignedTo]=0,'Low',IIf([intAssignedTo]=1,'Normal','High'))  FROM tblTickets",
         "Normal,Normal,High,High"},
        {"SELECT Int([tblPersons.curRate]*[intMinutesWorked]/60) ,tblTickets.intMinutesWorked/60 FROM "
         "(tblPersons INNER JOIN tblTickets ON tblPersons.intPersonID = tblTickets.intAssignedTo) ORDER BY intTicketID",
         "149|1.5,97|0.983333333333333,Null|0.166666666666667"},
        {"SELECT curRate FROM tblPersons ORDER BY curRate DESC", "99.5,Null"},
        {"SELECT tblTickets.intMinutesWorked as 'Worked' FROM tblTickets where intTicketID=4", "1"},
        {"SELECT `strPersonName` FROM [tblPersons];  ", "Ann,Bo"},
    };
    for (const auto &[sql, answer] : cases)
        EXPECT_EQ(ask(sql), answer) << qPrintable(sql);
}

TEST_F(JetSql, RefusesWhatItDoesNotUnderstand) {
    for (const QString &sql :
         {QString("Select strNone from tblTickets"), QString("Select [strNone] from tblTickets"), QString("tblNone"),
          QString("Select * from tblTickets where strTicketID = ''1'"), QString("Select * from [tblTickets"),
          QString("Select * from tblTickets; drop table tblTickets"), QString("drop table tblTickets"), QString(),
          QString("Select * from tblTickets where intTicketID = 1") + QChar(0) + " or 1",
          QString("Select * from tblTickets where intTicketID = #1/1/2004#"), QString(2000000, u' ')})
        EXPECT_EQ(failureOf([&] { ask(sql); }), ado::statementFailed) << qPrintable(sql.left(100));
    // What would be a comment is two signs.
    EXPECT_EQ(ask("Select intTicketID from tblTickets where intTicketID = 3--1"), "4");
}

TEST_F(JetSql, ALookUpIsIndexedThoughTheSchemaPromisesOnlyTheKey) {
    const QString sql = "Select * from tblTickets where strTicketID = '2'";
    EXPECT_EQ(openRecordset(m_engine.connect(), sql)->RecordCount(), 1);
    const QString plan = ask("Select name from sqlite_master where type = 'index'");
    EXPECT_EQ(plan, "lookup tbltickets strticketid");
    // The row written after it is found by it.
    const Ref<ado::Recordset> set = openRecordset(m_engine.connect(), sql);
    set->Fields("strTicketID").SetValue("22");
    set->Update();
    EXPECT_EQ(ask("Select intTicketID from tblTickets where strTicketID = '22'"), "2");
    EXPECT_EQ(ask(sql), "");
}

struct LikeCase {
    const char *text;
    const char *pattern;
    bool fits;
};

TEST(JetLike, FitsPatternsInAnyAlphabet) {
    const LikeCase cases[] = {
        {"", "", true},
        {"", "%", true},
        {"", "_", false},
        {"abc", "%", true},
        {"abc", "A%C", true},
        {"abc", "a_c", true},
        {"abc", "a_", false},
        {"aXbXc", "%x%X%", true},
        {"50%", "50[%]", true},
        {"50x", "50[%]", false},
        {"b", "[a-c]", true},
        {"d", "[a-c]", false},
        {"d", "[!a-c]", true},
        {"a[b", "a[b", true},
        {"\u03A3\u0391", "%\u03B1", true},
        {"\u0416", "\u0436", true},
        {"\xF0\x9F\x98\x80x", "_x", true},
        {"aaaaab", "%a%a%ab", true},
        {"ab", "a%b%c", false},
    };
    for (const LikeCase &each : cases)
        EXPECT_EQ(ado::likeText(QString::fromUtf8(each.text), QString::fromUtf8(each.pattern)), each.fits)
            << each.text << " like " << each.pattern;
}

TEST(JetLike, HostilePatternsTakeBoundedTime) {
    const QString text(20000, u'a');
    EXPECT_FALSE(ado::likeText(text, QString("%a").repeated(30) + "b"));
    EXPECT_FALSE(ado::likeText(text, QString("[").repeated(200)));
}

TEST(JetTranslator, AnyTextIsTranslatedOrRefused) {
    const QStringList pieces{
        "select", "*",       "from", "tblTickets", "where", "strTicketID", "=",    "'1'",   "'",
        "\"",     "[",       "]",    "(",          ")",     ".",           ",",    "order", "by",
        "desc",   "curRate", "/",    "-",          ";",     "`",           "like", "true",  QString(QChar(0xD83D)),
        "1.5",    "<>",      "as"};
    for (unsigned seed = 0; seed < 20000; ++seed) {
        std::mt19937 random(seed);
        QString text;
        for (std::size_t length = random() % 30; length > 0; --length)
            text += pieces[static_cast<qsizetype>(random() % static_cast<unsigned>(pieces.size()))] +
                    (random() % 3 != 0 ? " " : "");
        const auto failure = Attempt([&] { ado::translateJetSource(text, {"currate"}); });
        ASSERT_TRUE(!failure || failure->number() == ado::statementFailed || failure->number() == ado::notUpdatable)
            << seed;
    }
}

} // namespace

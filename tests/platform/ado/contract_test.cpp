// What every engine holds to, whatever stores the rows. Two connections are two programs on one database.

#include "platform/ado/enginekinds.h"
#include "platform/value/convert.h"

namespace {

using ado::LockType;
using ado::Recordset;

class Contract : public ::testing::TestWithParam<EngineKind> {
  protected:
    Ref<Recordset> open(const QString &source = "tblAll") { return openRecordset(m_connection, source); }

    void addTexts(const QStringList &texts) {
        const Ref<Recordset> set = open();
        for (const QString &text : texts) {
            set->AddNew();
            set->Fields("strText").SetValue(text);
            set->Update();
        }
    }

    std::unique_ptr<Engine> m_engine = GetParam().make();
    Ref<ado::Connection> m_connection = m_engine->connect();
};

INSTANTIATE_TEST_SUITE_P(Engines, Contract, ::testing::ValuesIn(engineKinds()),
                         [](const auto &each) { return each.param.name; });

TEST_P(Contract, NumbersGoOnBehindARaisedOneWhoeverRaisesIt) {
    const Ref<ado::Connection> other = m_engine->connect();
    ado::Provider &mine = *m_connection->provider();
    ado::Provider &theirs = *other->provider();
    EXPECT_EQ(mine.lastNumber("tblAll"), 0);
    EXPECT_TRUE(mine.raiseLastNumber("tblAll", 5));
    addTexts({"six"});
    EXPECT_FALSE(theirs.raiseLastNumber("TBLALL", 6));
    EXPECT_FALSE(theirs.raiseLastNumber("tblAll", 2));
    EXPECT_TRUE(theirs.raiseLastNumber("tblAll", 9));
    EXPECT_EQ(mine.lastNumber("tblAll"), 9);
    EXPECT_EQ(failureOf([&] { mine.raiseLastNumber("tblAll", 2147483647); }), failures::overflow);
    addTexts({"ten"});
    // A deleted row's number is not given again either.
    const Ref<Recordset> set = open("SELECT * FROM tblAll ORDER BY intID");
    EXPECT_EQ(set->Fields("intID").Value(), Value(qint32{6}));
    set->MoveNext();
    EXPECT_EQ(set->Fields("intID").Value(), Value(qint32{10}));
    set->Delete();
    EXPECT_EQ(mine.lastNumber("tblAll"), 10);
    {
        ado::Transaction undone(*m_connection);
        EXPECT_TRUE(mine.raiseLastNumber("tblAll", 50));
    }
    EXPECT_EQ(theirs.lastNumber("tblAll"), 10);
}

struct TypeCase {
    const char *field;
    Value set;
    /// What is read back, at once and by another connection; nothing when setting it fails.
    std::optional<Value> read;
    qint32 failure = 0;
};

TEST_P(Contract, HoldsValuesToTheTypesOfTheirColumns) {
    const QString longText(255, QChar(0x3B1));
    const QString odd = QString::fromUtf8("tab\tline\r\n'\"%;-- \xF0\x9F\x98\x80 ") + QChar(0x7F);
    const TypeCase cases[] = {
        {"strText", "", "", 0},
        {"strText", odd, odd, 0},
        {"strText", longText, longText, 0},
        {"strText", longText + "x", std::nullopt, ado::constraintFailed},
        // What UTF-8 can't hold is replaced when it is set, not bent when it is read.
        {"strText", QChar(0xFEFF) + QString("a") + QChar(0xD83D) + "b" + QChar(0xFFFF), "\u2060a\uFFFDb\uFFFD", 0},
        {"strMemo", QString(QChar(0xFEFF)), "\u2060", 0},
        {"strMemo", QString(QChar(0xFFFE)) + QChar(0xDE00) + QChar(0xD83D), "\uFFFD\uFFFD\uFFFD", 0},
        {"strText", qint32{7}, "7", 0},
        {"strText", "007", "007", 0},
        {"strText", Value::Null{}, Value::Null{}, 0},
        {"strText", Value(), Value::Null{}, 0},
        {"strMemo", " ", " ", 0},
        {"strMemo", "1e3", "1e3", 0},
        {"strMemo", QString(200000, QChar('x')), QString(200000, QChar('x')), 0},
        {"intShort", qint32{32767}, qint16{32767}, 0},
        {"intShort", qint32{-32768}, qint16{-32768}, 0},
        {"intShort", qint32{32768}, std::nullopt, failures::overflow},
        {"intShort", "12", qint16{12}, 0},
        {"intShort", "twelve", std::nullopt, failures::typeMismatch},
        {"intShort", 2.5, qint16{2}, 0},
        {"intLong", qint32{2147483647}, qint32{2147483647}, 0},
        {"intLong", 2147483648.0, std::nullopt, failures::overflow},
        {"curMoney", Currency::fromScaled(9223372036854775807), Currency::fromScaled(9223372036854775807), 0},
        {"curMoney", Currency::fromScaled(-1), Currency::fromScaled(-1), 0},
        {"curMoney", 0.1, Currency::fromScaled(1000), 0},
        {"curMoney", qint32{3}, Currency::fromScaled(30000), 0},
        {"dteDate", DateTime{38000.123456789}, DateTime{38000.123456789}, 0},
        {"dteDate", DateTime{38000.0}, DateTime{38000.0}, 0},
        {"dteDate", DateTime{}, DateTime{}, 0},
        {"dteDate", "nonsense", std::nullopt, failures::typeMismatch},
        {"blnFlag", true, true, 0},
        {"blnFlag", false, false, 0},
        {"blnFlag", qint32{5}, true, 0},
        {"blnFlag", Value::Null{}, Value::Null{}, 0},
        {"intID", qint32{5}, std::nullopt, ado::notUpdatable},
    };
    for (const TypeCase &each : cases) {
        SCOPED_TRACE(std::string(each.field) + " " + each.set.kindName().toStdString());
        const Ref<Recordset> set = open("Select * from tblAll where intID = 0");
        set->AddNew();
        EXPECT_EQ(failureOf([&] { set->Fields(each.field).SetValue(each.set); }), each.failure);
        if (!each.read)
            continue;
        EXPECT_EQ(set->Fields(each.field).Value(), *each.read);
        set->Update();
        const qint32 id = toInt32(set->Fields("intID").Value());
        const Ref<Recordset> again =
            openRecordset(m_engine->connect(), QString("Select * from tblAll where intID = %1").arg(id));
        ASSERT_EQ(again->RecordCount(), 1);
        EXPECT_EQ(again->Fields(each.field).Value(), *each.read);
    }
}

TEST_P(Contract, GivesEveryRowANumberThatNoOtherEverHad) {
    addTexts({"a", "b", "c"});
    const Ref<Recordset> set = open();
    set->Find("strText = 'c'");
    set->Delete();
    set->AddNew();
    set->Fields("strMemo").SetValue("");
    EXPECT_EQ(failureOf([&] { set->Update(); }), ado::constraintFailed) << "an empty memo is no text";
    set->Fields("strMemo").SetValue(" ");
    set->Fields("strText").SetValue("d");
    EXPECT_EQ(failureOf([&] { set->Update(); }), 0) << "the row is still being added";
    EXPECT_EQ(set->Fields("intid").Value(), Value(qint32{4}));
    EXPECT_EQ(set->Fields("strText").Value(), Value("d")) << "the new row is the current one";
    EXPECT_EQ(set->RecordCount(), 3);
}

TEST_P(Contract, FindsFieldsByNameWithoutRegardToCaseAndByOrdinal) {
    addTexts({"x"});
    const Ref<Recordset> set = open();
    EXPECT_EQ(set->Fields("STRTEXT").Value(), Value("x"));
    EXPECT_EQ(set->Fields(1).Name(), "strText");
    EXPECT_EQ(set->Fields(1).Value(), Value("x"));
    EXPECT_EQ(failureOf([&] { static_cast<void>(set->Fields("strNone")); }), ado::itemNotFound);
    EXPECT_EQ(failureOf([&] { static_cast<void>(set->Fields(99)); }), ado::itemNotFound);
    EXPECT_EQ(failureOf([&] { static_cast<void>(set->Fields(-1)); }), ado::itemNotFound);
}

TEST_P(Contract, WalksOverTheRows) {
    const Ref<Recordset> empty = open();
    EXPECT_TRUE(empty->IsEOF());
    EXPECT_TRUE(empty->IsBOF());
    EXPECT_EQ(empty->RecordCount(), 0);
    EXPECT_EQ(failureOf([&] { empty->MoveFirst(); }), ado::noCurrentRecord);
    EXPECT_EQ(failureOf([&] { empty->MoveNext(); }), ado::noCurrentRecord);
    EXPECT_EQ(failureOf([&] { static_cast<void>(empty->Fields(1).Value()); }), ado::noCurrentRecord);
    EXPECT_EQ(failureOf([&] { empty->Fields(1).SetValue("x"); }), ado::noCurrentRecord);

    addTexts({"a", "b"});
    const Ref<Recordset> set = open();
    EXPECT_EQ(column(set, "strText"), "a,b");
    set->MoveFirst();
    EXPECT_EQ(column(set, "strText"), "a,b");
    set->Close();
    EXPECT_EQ(failureOf([&] { static_cast<void>(set->IsEOF()); }), ado::objectClosed);
}

TEST_P(Contract, FindsTheFirstRowFromTheCurrentOneOn) {
    addTexts({"a", QString::fromUtf8("\u00C9cole d'\u00E9t\u00E9"), QString::fromUtf8("Stra\u00DFe"), "Strasse", "A"});
    const QString cases[][2] = {
        {"strText = 'a'", "1"},         {"STRTEXT='A'", "1"},
        {"[strText] = 'strasse'", "4"}, {QString::fromUtf8("strText = '\u00E9COLE D''\u00C9T\u00C9'"), "2"},
        {"strText = 'b'", "0"},         {"intID = 3", "3"},
        {"intID = 3.5", "0"},           {"intID = '3'", "0"},
        {"strMemo = ''", "0"},          {"blnFlag = 0", "0"},
    };
    for (const auto &[criterion, row] : cases) {
        SCOPED_TRACE(qPrintable(criterion));
        const Ref<Recordset> set = open();
        set->Find(criterion);
        EXPECT_EQ(set->IsEOF() ? 0 : toInt32(set->Fields("intID").Value()), row.toInt());
    }
    const Ref<Recordset> set = open();
    set->Find("intID = 2");
    set->Find("strText = 'a'");
    EXPECT_EQ(set->Fields("intID").Value(), Value(qint32{5})) << "rows behind the current one are not looked at";
    for (const char *bad : {"", "strText", "strText = 'it's'", "strText = '", "= 'a'", "strText = a", "intID = nan",
                            "strText = 'a' or 1=1", "strText = 'a'''b'"})
        EXPECT_EQ(failureOf([&] { set->Find(bad); }), ado::invalidArgument) << bad;
    EXPECT_EQ(failureOf([&] { set->Find("strNone = 'a'"); }), ado::itemNotFound);
}

TEST_P(Contract, DeletesTheCurrentRowOnly) {
    addTexts({"a", "b", "c"});
    const Ref<Recordset> set = open();
    set->MoveNext();
    set->Delete();
    EXPECT_EQ(set->RecordCount(), 2);
    EXPECT_EQ(failureOf([&] { static_cast<void>(set->Fields(1).Value()); }), ado::noCurrentRecord);
    EXPECT_EQ(failureOf([&] { set->Delete(); }), ado::noCurrentRecord);
    set->MoveNext();
    EXPECT_EQ(column(set, "strText"), "c");
    EXPECT_EQ(column(open(), "strText"), "a,c");
}

TEST_P(Contract, WritesTheChangesOfARowWhenItIsLeft) {
    addTexts({"a", "b"});
    const Ref<Recordset> set = open();
    set->Fields(1).SetValue("first");
    set->MoveNext();
    set->Fields(1).SetValue("forgotten");
    set->CancelUpdate();
    EXPECT_EQ(set->Fields(1).Value(), Value("b"));
    set->AddNew();
    set->Fields(1).SetValue("third");
    set->AddNew();
    set->CancelUpdate();
    EXPECT_EQ(column(open(), "strText"), "first,b,third");
}

TEST_P(Contract, RefusesToChangeARowThatAnotherProgramChanged) {
    addTexts({"a"});
    const Ref<Recordset> mine = open();
    const Ref<Recordset> theirs = openRecordset(m_engine->connect(), "tblAll");
    theirs->Fields("intShort").SetValue(qint32{1});
    theirs->Update();

    mine->Fields("strText").SetValue("mine");
    EXPECT_EQ(failureOf([&] { mine->Update(); }), failures::unspecified);
    mine->CancelUpdate();
    EXPECT_EQ(failureOf([&] { mine->Delete(); }), failures::unspecified);
    EXPECT_EQ(column(open(), "strText"), "a");

    theirs->Delete();
    mine->Fields("strText").SetValue("mine");
    EXPECT_EQ(failureOf([&] { mine->Update(); }), failures::unspecified) << "the row is gone";
    EXPECT_EQ(open()->RecordCount(), 0) << "and it does not come back";
}

TEST_P(Contract, TakesOneChangeAfterAnotherOfItsOwnRow) {
    const Ref<Recordset> set = open();
    set->AddNew();
    set->Fields("dteDate").SetValue(DateTime{39000.1});
    set->Fields("curMoney").SetValue(Currency::fromScaled(12345));
    set->Update();
    for (const char *text : {"one", "two", "two"}) {
        set->Fields("strText").SetValue(text);
        EXPECT_EQ(failureOf([&] { set->Update(); }), 0);
    }
    EXPECT_EQ(failureOf([&] { set->Update(); }), 0) << "nothing set, nothing done";
    EXPECT_EQ(column(open(), "strText"), "two");
}

TEST_P(Contract, DoesNotSeeWhatOthersWriteAfterItOpened) {
    addTexts({"a", "b"});
    const Ref<Recordset> mine = open();
    const Ref<Recordset> theirs = openRecordset(m_engine->connect(), "tblAll");
    theirs->Delete();
    theirs->AddNew();
    theirs->Fields(1).SetValue("c");
    theirs->Update();
    EXPECT_EQ(mine->RecordCount(), 2);
    EXPECT_EQ(column(mine, "strText"), "a,b");
    EXPECT_EQ(column(open(), "strText"), "b,c");
}

TEST_P(Contract, SortsTextsWithoutRegardToCase) {
    addTexts({"b", "A", "C", "a1", QString::fromUtf8("\u00E4b"), "B", "Z"});
    EXPECT_EQ(column(open("SELECT * From tblAll ORDER BY strText, intID"), "strText"),
              QString::fromUtf8("A,a1,\u00E4b,b,B,C,Z"));
    EXPECT_EQ(column(open("SELECT strText From tblAll ORDER BY strText DESC, intID desc;"), "strText"),
              QString::fromUtf8("Z,C,B,b,\u00E4b,a1,A"));
}

TEST_P(Contract, OnlyRowsOfOneTableOpenForWritingCanBeChanged) {
    addTexts({"a"});
    for (const char *source : {"Select strText from tblAll", "Select Count(*) from tblAll",
                               "Select tblAll.* from tblAll, tblAll as b", "select distinct * from tblAll"}) {
        const Ref<Recordset> set = open(source);
        EXPECT_EQ(failureOf([&] { set->AddNew(); }), ado::notUpdatable) << source;
    }
    const Ref<Recordset> readOnly = openRecordset(m_connection, "tblAll", LockType::ReadOnly);
    EXPECT_EQ(failureOf([&] { readOnly->AddNew(); }), ado::notUpdatable);
    EXPECT_EQ(failureOf([&] { readOnly->Fields(1).SetValue("x"); }), ado::notUpdatable);
    EXPECT_EQ(failureOf([&] { readOnly->Delete(); }), ado::notUpdatable);
    const Ref<Recordset> batch = openRecordset(m_connection, "tblAll", LockType::BatchOptimistic);
    EXPECT_EQ(failureOf([&] { batch->Fields(1).SetValue("x"); }), ado::notUpdatable);
    EXPECT_EQ(column(batch, "strText"), "a");
}

TEST_P(Contract, KeepsTheRowsWhenTheConnectionIsClosed) {
    addTexts({"a"});
    const Ref<Recordset> set = open();
    m_connection->Close();
    EXPECT_EQ(set->Fields(1).Value(), Value("a"));
    EXPECT_EQ(failureOf([&] { set->AddNew(); }), ado::objectClosed);
    EXPECT_EQ(failureOf([&] { open(); }), ado::objectClosed);
    m_connection->Open();
    EXPECT_EQ(column(open(), "strText"), "a");
}

TEST_P(Contract, DoesATransactionAsAWholeOrNotAtAll) {
    m_connection->BeginTrans();
    addTexts({"a", "b"});
    EXPECT_EQ(openRecordset(m_engine->connect(), "tblAll")->RecordCount(), 0);
    m_connection->RollbackTrans();
    EXPECT_EQ(open()->RecordCount(), 0);

    m_connection->BeginTrans();
    addTexts({"c"});
    m_connection->CommitTrans();
    m_connection->BeginTrans();
    addTexts({"d"});
    m_connection->Close();
    m_connection->Open();
    EXPECT_EQ(column(open(), "strText"), "c");
    {
        ado::Transaction outer(*m_connection);
        ado::Transaction(*m_connection).commit();
        addTexts({"e"});
        {
            const ado::Transaction undone(*m_connection);
            addTexts({"f"});
        }
        EXPECT_EQ(column(openRecordset(m_engine->connect(), "tblAll"), "strText"), "c") << "the outer one is open";
        EXPECT_EQ(column(open(), "strText"), "c,e");
    }
    EXPECT_EQ(column(open(), "strText"), "c");
}

TEST_P(Contract, WhatIsReadInAMomentIsOfThatMoment) {
    addTexts({"a", "b"});
    const Ref<ado::Connection> other = m_engine->connect();
    {
        const ado::Moment moment(*m_connection);
        EXPECT_EQ(column(open(), "strText"), "a,b");
        // Others write meanwhile.
        openRecordset(other, "tblAll")->Delete();
        EXPECT_EQ(column(openRecordset(other, "tblAll"), "strText"), "b");
        EXPECT_EQ(column(open(), "strText"), "a,b");
    }
    EXPECT_EQ(column(open(), "strText"), "b");
    const ado::Transaction transaction(*m_connection);
    EXPECT_EQ(failureOf([&] { addTexts({"c"}); }), 0) << "it is over";
}

TEST_P(Contract, ChangesMadeTogetherStandAloneAllTheSame) {
    const Ref<ado::Connection> other = m_engine->connect();
    const Ref<Recordset> set = open();
    EXPECT_EQ(failureOf([&] {
                  set->Together([&] {
                      for (const char *text : {"a", "b"}) {
                          set->AddNew();
                          set->Fields("strText").SetValue(text);
                          set->Update();
                          EXPECT_EQ(openRecordset(other, "tblAll")->RecordCount(), set->RecordCount()) << text;
                      }
                      set->Fields("intShort").SetValue(70000);
                  });
              }),
              failures::overflow);
    EXPECT_EQ(column(openRecordset(other, "tblAll"), "strText"), "a,b");
    m_connection->BeginTrans();
    open()->Together([&] { addTexts({"c"}); });
    m_connection->RollbackTrans();
    EXPECT_EQ(open()->RecordCount(), 2) << "a transaction around it holds";
}

/// A search by key gives the row that a walk would meet first, wherever it starts and however the rows are sorted.
TEST_P(Contract, FindsByKeyInAnyOrder) {
    addTexts({"e", "d", "c", "b", "a"});
    openRecordset(m_engine->connect(), "Select * from tblAll where intID = 3")->Delete();
    for (const char *source : {"tblAll", "Select * from tblAll order by strText"}) {
        const Ref<Recordset> set = open(source);
        set->AddNew();
        set->Fields("strText").SetValue(source);
        set->Update();
        for (qint32 from = 0; from < set->RecordCount(); ++from) {
            for (const double key : {0.0, 1.0, 2.0, 2.5, 3.0, 4.0, 5.0, 6.0, 7.0, 1e20}) {
                const auto start = [&] {
                    set->MoveFirst();
                    for (qint32 at = 0; at < from; ++at)
                        set->MoveNext();
                };
                start();
                while (!set->IsEOF() && toDouble(set->Fields("intID").Value()) != key)
                    set->MoveNext();
                const qint32 expected = set->IsEOF() ? 0 : toInt32(set->Fields("intID").Value());
                start();
                set->Find(QString("intID = %1").arg(key));
                EXPECT_EQ(set->IsEOF() ? 0 : toInt32(set->Fields("intID").Value()), expected) << from << " " << key;
            }
        }
    }
}

TEST_P(Contract, RunsStatements) {
    addTexts({"a", "b", "c"});
    ado::Command command;
    command.SetActiveConnection(m_connection);
    command.SetCommandText("UPDATE tblAll SET strText = 'x' WHERE intID > 1");
    EXPECT_EQ(command.Execute(), 2);
    EXPECT_EQ(column(open(), "strText"), "a,x,x");
    for (const char *bad :
         {"nonsense", "delete from tblNone", "delete from tblAll; delete from tblAll", "delete from 'x"}) {
        command.SetCommandText(bad);
        EXPECT_EQ(failureOf([&] { command.Execute(); }), ado::statementFailed) << bad;
    }
    EXPECT_EQ(open()->RecordCount(), 3);
}

} // namespace

// The list of texts, as a joined text and as a table.

#include "orvelle/reference/program.h"
#include "orvelle/reference/simplelist.h"
#include "support/fakecontrol.h"

namespace {

cSimpleList listOf(const QStringList &items) {
    cSimpleList list;
    for (const QString &item : items)
        list.DicList->Add(item, item);
    return list;
}

using SimpleListTest = ProgramTest;

struct JoinedCase {
    QString joined;
    QStringList items;
    QString joinedAgain;
};

TEST_F(SimpleListTest, TakesAJoinedTextApartAndPutsItTogether) {
    const QList<JoinedCase> cases{
        {"", {}, ""},
        {"a", {"a"}, "a"},
        {"a\r\n\r\nb\r\na", {"a", "b"}, "a\r\nb"},
        {"Open\r\nOPEN\r\nopen", {"Open"}, "Open"},
        {"\r\na\r\n", {"a"}, "a"},
        {"  x  ", {"  x  "}, "x"},
        {"  x\r\ny  ", {"  x", "y  "}, "x\r\ny"},
        {"a\nb", {"a\nb"}, "a\nb"},
        {"O'Brien; \"x\"", {"O'Brien; \"x\""}, "O'Brien; \"x\""},
    };
    for (const JoinedCase &one : cases) {
        SCOPED_TRACE(one.joined.toStdString());
        cSimpleList list = listOf({"old"});
        list.FromString(one.joined);
        EXPECT_EQ(list.DicList->Keys(), one.items);
        EXPECT_EQ(list.ToString(), one.joinedAgain);
    }
}

using SimpleListTableTest = DatabaseTest;

struct TableCase {
    const char *name;
    QStringList rows, items;
    /// Keys and values afterwards; keys tell a row that stayed from one that came anew.
    QStringList rowsAfter;
};

TEST_F(SimpleListTableTest, BringsATableInLine) {
    const QList<TableCase> cases{
        {"adds, then deletes", {"a", "c"}, {"a", "b"}, {"1 a", "3 b"}},
        {"case is no change", {"a"}, {"A"}, {"1 a"}},
        {"an empty list empties", {"a", "b", "c"}, {}, {}},
        {"of two equal rows one stays", {"a", "A"}, {}, {"2 A"}},
        {"a quote", {"It's open", "plain"}, {"plain", "Don't ''know''"}, {"2 plain", "3 Don't ''know''"}},
        {"what looks like a statement", {"x' OR '1'='1", "y"}, {"y"}, {"2 y"}},
        {"into an empty table", {}, {"b", "a"}, {"1 b", "2 a"}},
        {"a renamed item is a new row", {"Waiting"}, {"On hold"}, {"2 On hold"}},
    };
    for (const TableCase &one : cases) {
        SCOPED_TRACE(one.name);
        newDatabase();
        fill("tblStatuses", "strStatus", one.rows);
        listOf(one.items).ToRS(open("tblStatuses"));
        EXPECT_EQ(rows("tblStatuses", {"intStatusID", "strStatus"}), one.rowsAfter);
    }
}

TEST_F(SimpleListTableTest, WritesNothingWhereNothingChanged) {
    fill("tblStatuses", "strStatus", {"a", "b"});
    // This recordset takes no change at all: one would be reported.
    listOf({"b", "A"}).ToRS(fncReturnRecordset("tblStatuses", true, true, false));
}

TEST_F(SimpleListTableTest, ReadsFromTheCurrentRowOnAndAdds) {
    fill("tblStatuses", "strStatus", {"a", "b", "B"});
    cSimpleList list = listOf({"x"});
    const auto recordset = open("tblStatuses");
    recordset->MoveNext();
    list.FromRS(recordset);
    EXPECT_EQ(list.DicList->Keys(), (QStringList{"x", "b"}));
    EXPECT_TRUE(recordset->IsEOF());
    list.FromRS(nullptr);
    EXPECT_EQ(list.DicList->Count(), 2);
}

struct ControlCase {
    const char *name;
    FakeControl::Kind kind;
    QString shown, preset;
    QString shownAfter, presetAfter;
    int indexAfter;
};

TEST_F(SimpleListTest, FillsAControlAndKeepsWhatItShows) {
    using Kind = FakeControl::Kind;
    const QList<ControlCase> cases{
        {"nothing shown, no preset", Kind::Combo, "", "", "", "", -1},
        {"preset", Kind::Combo, "", "b", "b", "b", 1},
        {"shown wins over preset", Kind::Combo, "a", "b", "a", "a", 0},
        {"a combo keeps a text of no row", Kind::Combo, "x", "b", "x", "x", -1},
        {"a list shows its row", Kind::DropDownList, "b", "", "b", "b", 1},
        {"a list refuses a text of no row", Kind::DropDownList, "x", "", "", "x", -1},
    };
    for (const ControlCase &one : cases) {
        SCOPED_TRACE(one.name);
        FakeControl control(one.kind, one.shown);
        QString preset = one.preset;
        listOf({"a", "b", "", "  ", " c "}).AddToComboOrList(control, preset);
        EXPECT_EQ(control.rows(), (QStringList{"a", "b", " c "}));
        EXPECT_EQ(control.Text(), one.shownAfter);
        EXPECT_EQ(preset, one.presetAfter);
        EXPECT_EQ(control.ListIndex(), one.indexAfter);
    }
}

/// A list that takes no text at all, only a choice of its rows.
class ChoiceOnly : public FakeControl {
  public:
    void SetText(const QString &) override { throw Failure(380, "Invalid property value"); }
};

TEST_F(SimpleListTest, ChoosesTheRowWhereAControlTakesNoText) {
    ChoiceOnly control;
    QString preset = "b";
    listOf({"a", "b", "B2"}).AddToComboOrList(control, preset);
    EXPECT_EQ(control.ListIndex(), 1);
}

} // namespace

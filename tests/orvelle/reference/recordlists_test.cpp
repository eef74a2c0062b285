// The lists of records: problem types, responsibles and callers, and the tables that mirror them.

#include "orvelle/reference/program.h"

namespace {

using TypesTest = DatabaseTest;
using PersonsTest = DatabaseTest;
using CallersTest = DatabaseTest;

void addType(cProblemTypes &types, const QString &description, const QString &category, qint16 minutes) {
    const auto type = Ref<cProblemType>::make();
    type->ProblemDescription = description;
    type->ProblemCategory = category;
    type->DefaultMinutes = minutes;
    types.DicList->Add(description, type);
}

TEST_F(TypesTest, ReadsTheTable) {
    addRow("tblTypes", {{"strTypeDescription", "Printer"}, {"strCategory", "Hardware"}, {"intDefMin", 15}});
    addRow("tblTypes", {{"strTypeDescription", "printer"}, {"strCategory", "Second"}});
    addRow("tblTypes", {{"strTypeDescription", ""}});
    addRow("tblTypes", {{"strTypeDescription", "Bare"}});
    cProblemTypes types;
    addType(types, "old", "", 0);
    types.FromRS(open("tblTypes"));
    EXPECT_EQ(types.ToArray(), (ValueRows{{"Printer", "Hardware", qint16{15}}, {"Bare", "", qint16{0}}}));
    EXPECT_EQ(types.DicList->Item("PRINTER")->ID, 1);
    types.FromRS(nullptr);
    EXPECT_EQ(types.DicList->Count(), 0);
}

TEST_F(TypesTest, FindsATypeByItsNumberAndNeverNothing) {
    fill("tblTypes", "strTypeDescription", {"a", "b"});
    cProblemTypes types;
    types.FromRS(open("tblTypes"));
    EXPECT_EQ(types.GetProblemFromID(2)->ProblemDescription, "b");
    for (const qint16 number : QList<qint16>{0, -1, 3})
        EXPECT_EQ(types.GetProblemFromID(number)->ProblemDescription, "") << number;
}

TEST_F(TypesTest, BringsTheTableInLine) {
    addRow("tblTypes", {{"strTypeDescription", "Printer"}, {"strCategory", "Hardware"}, {"intDefMin", 15}});
    addRow("tblTypes", {{"strTypeDescription", "Gone"}});
    addRow("tblTypes", {{"strTypeDescription", ""}, {"strCategory", "nameless"}});
    addRow("tblTypes", {{"strTypeDescription", "Null"}});
    cProblemTypes types;
    addType(types, "PRINTER", "Hardware", 20);
    addType(types, "It's \"new\"", "Soft'ware", 5);
    addType(types, "Null", "", 0);
    types.ToRS(open("tblTypes"));
    EXPECT_EQ(rows("tblTypes", {"intTicketType", "strTypeDescription", "strCategory", "intDefMin"}),
              (QStringList{"1 Printer Hardware 20", "3  nameless Null", "4 Null  0", "5 It's \"new\" Soft'ware 5"}));
    // A second time there is nothing to write, so a recordset that takes no changes will do; an empty list needs none.
    cProblemTypes().ToRS(nullptr);
    types.ToRS(fncReturnRecordset("Select * from tblTypes where strTypeDescription <> ''", true, true, false));
}

TEST_F(TypesTest, FindsRowsByTheTablesOwnKeysAlone) {
    fill("tblTypes", "strTypeDescription", {"a", "b"});
    cProblemTypes types;
    addType(types, "a", "A", 1);
    addType(types, "b", "B", 2);
    types.DicList->Item("a")->ID = 2; // a number from another database
    types.ToRS(open("tblTypes"));
    EXPECT_EQ(rows("tblTypes", {"strTypeDescription", "strCategory", "intDefMin"}), (QStringList{"a A 1", "b B 2"}));
}

TEST_F(PersonsTest, ReadsTheTableTheNamelessIncluded) {
    addRow("tblPersons", {{"strPersonName", "Ann"}, {"curRate", Currency::fromScaled(123456)}, {"strEmail", "a@x"}});
    addRow("tblPersons", {{"strPersonName", ""}});
    addRow("tblPersons", {{"strPersonName", "ANN"}, {"strEmail", "other"}});
    cResponsibles persons;
    persons.FromRS(open("tblPersons"));
    EXPECT_EQ(persons.ToArray(), (ValueRows{{"Ann", "a@x", Currency::fromScaled(123456)}, {"", "", Currency()}}));
}

TEST_F(PersonsTest, FindsAPersonByNumber) {
    fill("tblPersons", "strPersonName", {"Ann", "Bob"});
    cResponsibles persons;
    persons.FromRS(open("tblPersons"));
    EXPECT_EQ(persons.GetResponsibleFromID(2)->FullName, "Bob");
    EXPECT_EQ(persons.GetResponsibleFromID(0)->FullName, "");
    EXPECT_TRUE(persons.GetResponsibleFromID(3).isNothing());
}

TEST_F(PersonsTest, BringsTheTableInLine) {
    fill("tblPersons", "strPersonName", {"Ann", "Bob", "O'Brien"});
    cResponsibles persons;
    persons.FromString("ann\ta@x\t12.5\r\nO'Brien\to'brien@x\t0\r\nZoë\tz@x\t99.9999");
    persons.ToRS(open("tblPersons"));
    const QStringList columns{"intPersonID", "strPersonName", "curRate", "strEmail"};
    EXPECT_EQ(rows("tblPersons", columns),
              (QStringList{"1 Ann 12.5 a@x", "3 O'Brien 0 o'brien@x", "4 Zoë 99.9999 z@x"}));
    persons.ToRS(fncReturnRecordset("tblPersons", true, true, false));

    // A changed name is another person: a new row with a new key.
    cResponsibles renamed;
    renamed.FromArray({{"Anna", "a@x", "12.5"}, {"O'Brien", "", 0}, {"Zoë", "z@x", "no rate"}});
    renamed.ToRS(open("tblPersons"));
    EXPECT_EQ(rows("tblPersons", columns), (QStringList{"3 O'Brien 0 ", "4 Zoë 0 z@x", "5 Anna 12.5 a@x"}));
}

TEST_F(CallersTest, ReadsTheTable) {
    addRow("tblCallers",
           {{"strFullName", "Cal"}, {"strTelephone", "+46 1"}, {"strComment", "-"}, {"strCategory", "VIP"}});
    addRow("tblCallers", {{"strFullName", ""}, {"strEmail", "nobody"}});
    addRow("tblCallers", {{"strEmail", "nobody"}});
    addRow("tblCallers", {{"strFullName", "CAL"}});
    cCallersList callers;
    callers.FromRS(open("tblCallers"));
    EXPECT_EQ(callers.ToArray(), (ValueRows{{"Cal", "", "'+46 1", "VIP", "'-"}}));
    EXPECT_EQ(callers.DicList->Item("cal")->ID, 1);
}

TEST_F(CallersTest, BringsTheTableInLineAndSettles) {
    addRow("tblCallers", {{"strFullName", "Cal"}, {"strTelephone", "+46 1"}, {"strComment", "kind"}});
    addRow("tblCallers", {{"strFullName", ""}, {"strEmail", "nobody"}});
    addRow("tblCallers", {{"strFullName", "D'Arcy"}});
    const QStringList columns{"intCallerID", "strFullName", "strTelephone", "strEmail", "strComment", "strCategory"};
    cCallersList callers;
    callers.FromRS(open("tblCallers"));
    callers.ToRS(open("tblCallers"));
    const QStringList settled{"1 Cal '+46 1  kind ", "2  Null nobody Null Null", "3 D'Arcy    "};
    EXPECT_EQ(rows("tblCallers", columns), settled);
    callers.FromRS(open("tblCallers"));
    callers.ToRS(open("tblCallers"));
    EXPECT_EQ(rows("tblCallers", columns), settled);

    // A text has no place for comments; what it does not name is deleted, quotes and all.
    cCallersList fromText;
    fromText.FromString("CAL\tc@x\t1\tVIP\r\nEve\te@x\t2\t");
    fromText.ToRS(open("tblCallers"));
    EXPECT_EQ(rows("tblCallers", columns),
              (QStringList{"1 Cal 1 c@x  VIP", "2  Null nobody Null Null", "4 Eve 2 e@x  "}));
}

struct ReportCase {
    const char *procedure;
    std::function<void()> step;
    const char *reason = "";
};

Ref<ado::Recordset> closed(const QString &table) {
    const auto recordset = fncReturnRecordset(table, false, true, false);
    recordset->Close();
    return recordset;
}

Ref<ado::Recordset> readOnly(const QString &table) { return fncReturnRecordset(table, true, true, false); }

/// A failure of a list is reported under the list's own name, and the report ends the process.
class Reports : public DatabaseTest, public ::testing::WithParamInterface<ReportCase> {};

INSTANTIATE_TEST_SUITE_P(
    OfLists, Reports,
    ::testing::Values(ReportCase{"cSimpleList.ToRS",
                                 [] {
                                     cSimpleList list;
                                     list.FromString("new");
                                     list.ToRS(readOnly("tblStatuses"));
                                 },
                                 "read-only"},
                      ReportCase{"cProblemTypes.ToRS",
                                 [] {
                                     cProblemTypes types;
                                     addType(types, "a", "changed", 1);
                                     const auto recordset = fncReturnRecordset("tblTypes", false, true, false);
                                     const auto other = fncCreateCommand();
                                     other->SetCommandText("UPDATE tblTypes SET intDefMin = 9");
                                     other->Execute();
                                     types.ToRS(recordset);
                                 },
                                 "changed or deleted by another program"},
                      ReportCase{"cProblemType.FromRS",
                                 [] {
                                     addRow("tblTypes", {{"strCategory", "no description"}});
                                     cProblemTypes().FromRS(open("tblTypes"));
                                 }},
                      ReportCase{"cResponsible.FromRS",
                                 [] {
                                     addRow("tblPersons", {{"strEmail", "no name"}});
                                     cResponsibles().FromRS(open("tblPersons"));
                                 }},
                      ReportCase{"cOtherSettings.GetValue",
                                 [] {
                                     objSettings->OtherSettings->SetValue("ServiceStart", "soon");
                                     (void)objSettings->OtherSettings->GetValue("ServiceStart", valuetype::date);
                                 },
                                 "The setting ServiceStart holds \"soon\""},
                      ReportCase{"cResponsibles.FromRS", [] { cResponsibles().FromRS(closed("tblPersons")); },
                                 "not open"},
                      ReportCase{"cOtherSettings.ToRS",
                                 [] {
                                     cOtherSettings settings;
                                     settings.SetValue("KBPath", "x");
                                     settings.ToRS(readOnly("tblOtherSettings"));
                                 },
                                 "read-only"}),
    [](const auto &each) { return QString(each.param.procedure).replace(u'.', u'_').toStdString(); });

TEST_P(Reports, UnderTheirNamesAndEnd) {
    fill("tblTypes", "strTypeDescription", {"a"});
    expectReport(GetParam().procedure);
    EXPECT_TRUE(endsProcess(GetParam().step));
    EXPECT_TRUE(answers.asked().first().text.contains(GetParam().reason)) << qPrintable(answers.asked().first().text);
}

} // namespace

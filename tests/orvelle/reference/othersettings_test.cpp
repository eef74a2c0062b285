// Settings by name: typed reading, and the table of names and texts.

#include "orvelle/reference/program.h"

namespace {

using OtherSettingsTest = DatabaseTest;

struct ReadCase {
    qint32 type;
    /// Null for a name that is missing.
    const char *text;
    Value value;
};

TEST_F(OtherSettingsTest, ReadsATextAsTheTypeAskedFor) {
    const QList<ReadCase> cases{
        {valuetype::integer, "42", qint16{42}},
        {valuetype::integer, " 7 ", qint16{7}},
        {valuetype::integer, "2.5", qint16{2}},
        {valuetype::integer, "letters", qint16{0}},
        {valuetype::integer, "", qint16{0}},
        {valuetype::text, "", ""},
        {valuetype::text, " x\r\n", " x\r\n"},
        {valuetype::boolean, "True", true},
        {valuetype::boolean, "-1", true},
        {valuetype::boolean, "0", false},
        {valuetype::boolean, "perhaps", false},
        {valuetype::boolean, "", false},
        {valuetype::date, "5:30:00 PM", DateTime::fromTime(17, 30, 0)},
        {valuetype::date, "12:00:00 PM", DateTime::fromTime(12, 0, 0)},
        {17, "42", {}},
        {valuetype::integer, nullptr, qint16{0}},
        {valuetype::text, nullptr, ""},
        {valuetype::boolean, nullptr, false},
        {valuetype::date, nullptr, DateTime{}},
        {3, nullptr, {}},
    };
    for (const ReadCase &one : cases) {
        cOtherSettings settings;
        if (one.text)
            settings.SetValue("Name", one.text);
        EXPECT_EQ(settings.GetValue("nAME", one.type), one.value) << one.type << " " << QString(one.text).toStdString();
        EXPECT_EQ(settings.DicList->Count(), one.text ? 1 : 0);
    }
}

TEST_F(OtherSettingsTest, WritesEveryNameAndDeletesNone) {
    const QStringList columns{"intSettingID", "strPropName", "strPropValue"};
    objSettings->OtherSettings->FromRS(open("tblOtherSettings"));
    EXPECT_EQ(objSettings->OtherSettings->DicList->Count(), 0) << "an empty table takes the defaults away";
    addRow("tblOtherSettings", {{"strPropName", "Old"}, {"strPropValue", "stays"}});
    cOtherSettings settings;
    settings.SetValue("Name", "O'Neill");
    settings.SetValue("It's", "quoted name");
    settings.SetValue("Empty", "");
    settings.ToRS(open("tblOtherSettings"));
    settings.ToRS(open("tblOtherSettings"));
    settings.SetValue("IT'S", "changed");
    settings.ToRS(open("tblOtherSettings"));
    EXPECT_EQ(rows("tblOtherSettings", columns),
              (QStringList{"1 Old stays", "2 Name O'Neill", "3 It's changed", "4 Empty  "}));

    cOtherSettings read;
    read.SetValue("Default", "goes");
    read.FromRS(open("tblOtherSettings"));
    EXPECT_EQ(read.DicList->Keys(), (QStringList{"Old", "Name", "It's", "Empty"}));
    EXPECT_EQ(read.GetValue("Empty", valuetype::text), Value(" "));
}

} // namespace

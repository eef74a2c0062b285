// Settings by name: typed reading, and the table of names and texts.

#include "reference/program.h"

namespace {

using OtherSettingsTest = DatabaseTest;

struct ReadCase {
    qint32 type;
    const char *text;
    Value value;
};

TEST_F(OtherSettingsTest, ReadsATextAsTheTypeAskedFor) {
    const QList<ReadCase> cases{
        {settingtype::integer, "42", qint16{42}},
        {settingtype::integer, " 7 ", qint16{7}},
        {settingtype::integer, "2.5", qint16{2}},
        {settingtype::integer, "letters", qint16{0}},
        {settingtype::integer, "", qint16{0}},
        {settingtype::text, "", ""},
        {settingtype::text, " x\r\n", " x\r\n"},
        {settingtype::boolean, "True", true},
        {settingtype::boolean, "-1", true},
        {settingtype::boolean, "0", false},
        {settingtype::boolean, "perhaps", false},
        {settingtype::boolean, "", false},
        {settingtype::date, "5:30:00 PM", DateTime::fromTime(17, 30, 0)},
        {settingtype::date, "12:00:00 PM", DateTime::fromTime(12, 0, 0)},
        {17, "42", {}},
    };
    cOtherSettings settings;
    for (const ReadCase &one : cases) {
        settings.SetValue("Name", one.text);
        EXPECT_EQ(settings.GetValue("nAME", one.type), one.value) << one.type << " " << one.text;
    }
}

TEST_F(OtherSettingsTest, AMissingNameReadsAsNothingOfItsType) {
    const cOtherSettings settings;
    EXPECT_EQ(settings.GetValue("x", settingtype::integer), Value(qint16{0}));
    EXPECT_EQ(settings.GetValue("x", settingtype::date), Value(DateTime{}));
    EXPECT_EQ(settings.GetValue("x", settingtype::text), Value(""));
    EXPECT_EQ(settings.GetValue("x", settingtype::boolean), Value(false));
    EXPECT_EQ(settings.GetValue("x", 3), Value());
    EXPECT_EQ(settings.DicList->Count(), 0);
}

TEST_F(OtherSettingsTest, ReportsWhatDoesNotConvert) {
    cOtherSettings settings;
    settings.SetValue("ServiceStart", "soon");
    expectReport("cOtherSettings.GetValue");
    EXPECT_TRUE(endsProcess([&] { (void)settings.GetValue("ServiceStart", settingtype::date); }));
    EXPECT_TRUE(questions().first().contains("The setting ServiceStart holds \"soon\""));
}

TEST_F(OtherSettingsTest, OneNameIsOneEntryWhateverItsCase) {
    cOtherSettings settings;
    settings.SetValue("kbpath", "a");
    settings.SetValue("KBPath", "b");
    EXPECT_EQ(settings.DicList->Keys(), QStringList{"kbpath"});
    EXPECT_EQ(settings.GetValue("KBPath", settingtype::text), Value("b"));
}

TEST_F(OtherSettingsTest, WritesEveryNameAndDeletesNone) {
    const QStringList columns{"intSettingID", "strPropName", "strPropValue"};
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
    EXPECT_EQ(read.GetValue("Empty", settingtype::text), Value(" "));
}

TEST_F(OtherSettingsTest, KeepsALongTextWhole) {
    const QString page = QString("<p>å 漢 🎫 'x'</p>\r\n").repeated(20000);
    cOtherSettings settings;
    settings.SetValue("NewHTML", page);
    settings.ToRS(open("tblOtherSettings"));
    cOtherSettings read;
    read.FromRS(open("tblOtherSettings"));
    EXPECT_EQ(read.GetValue("NewHTML", settingtype::text), Value(page));
}

TEST_F(OtherSettingsTest, AnEmptyTableTakesTheDefaultsAway) {
    ASSERT_TRUE(objSettings->OtherSettings->DicList->Exists("ServiceStart"));
    objSettings->OtherSettings->FromRS(open("tblOtherSettings"));
    EXPECT_EQ(objSettings->OtherSettings->DicList->Count(), 0);
}

} // namespace

// The settings program as a process, as a script calls it, on an installation folder of its own.

#include "companions/program.h"
#include "companions/settings/settingsfile.h"
#include "platform/ado/jet/engine.h"
#include "platform/ado/recordset.h"
#include "platform/value/convert.h"
#include "support/files.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <random>

namespace {

struct Outcome {
    int status;
    QString output;
    QString errors;
};

class Settings : public SettingsProgram {
  protected:
    Outcome run(const QStringList &arguments, const QByteArray &input = {}) {
        const Process process = start(arguments);
        process->write(input);
        const int status = finish(*process);
        EXPECT_EQ(process->exitStatus(), QProcess::NormalExit);
        return {status, QString::fromUtf8(process->readAllStandardOutput()),
                QString::fromUtf8(process->readAllStandardError())};
    }
    QString get(const QString &name) { return run({"get", name}).output; }
    void put(const QString &name, const QByteArray &content) const { writtenFile(path(name), content); }

    Ref<ado::Recordset> open(const QString &table) {
        ado::addJetEngine();
        const auto connection = Ref<ado::Connection>::make();
        connection->SetConnectionString("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path("Orvelle.mdb"));
        connection->Open();
        const auto set = Ref<ado::Recordset>::make();
        set->SetActiveConnection(connection);
        set->SetSource(table);
        set->SetLockType(ado::LockType::Optimistic);
        set->Open();
        return set;
    }
};

TEST_F(Settings, TellsWrongUsageFromFailure) {
    const std::pair<QStringList, int> cases[] = {
        {{}, 2},
        {{"nonsense"}, 2},
        {{"nonsense", "--help"}, 2},
        {{"get"}, 2},
        {{"set", "KBPath"}, 2},
        {{"list", "--jsn"}, 2},
        {{"list"}, 1},
        {{"get", "KBPath"}, 1},
        {{"export", "-"}, 1},
        {{"import", "no such file"}, 1},
    };
    for (const auto &[arguments, status] : cases) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, status) << qPrintable(arguments.join(" "));
        EXPECT_EQ(outcome.output, "");
        EXPECT_NE(outcome.errors, "");
    }
    EXPECT_TRUE(run({"list"}).errors.contains("Start orvelle once"));
    EXPECT_FALSE(QFile::exists(path("Orvelle.mdb"))) << "only storing creates the database";
    const Outcome help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.output.contains("EmailSubFolders"));
    for (const char *command : {"list", "get", "set", "export", "import"}) {
        const Outcome one = run({command, "--help"});
        EXPECT_EQ(one.status, 0);
        EXPECT_TRUE(one.output.startsWith(QString("Usage:\n  ORVELLESETTINGS.exe ") + command)) << command;
    }
}

TEST_F(Settings, TheFirstSettingCreatesTheDatabaseAsAFirstStartDoes) {
    EXPECT_EQ(run({"set", "emailsubfolders", "1"}).status, 0);
    EXPECT_EQ(get("EmailSubFolders"), "1\n");
    EXPECT_EQ(get("ServiceStart"), "8:00:00 AM\n");
    const QJsonObject all = QJsonDocument::fromJson(run({"list", "--json"}).output.toUtf8()).object();
    EXPECT_EQ(all.value("EmailSubFolders").toString(), "1") << "under the name that the system has for it";
    EXPECT_EQ(all.value("DayServiceEnd").toString(), "4");
    EXPECT_TRUE(run({"list"}).output.contains("DayServiceEnd=4\n"));
}

TEST_F(Settings, StoresValuesAsTheSystemReadsThem) {
    const QString odd = QString::fromUtf8("it's \"quoted\" = %x \\ \u00FC\u4E2D");
    const std::pair<QString, QString> cases[] = {
        {"", " "}, {odd, odd}, {"one\ntwo", "one\r\ntwo"}, {"one\r\ntwo", "one\r\ntwo"}, {"last", "last"},
    };
    for (const auto &[value, stored] : cases) {
        ASSERT_EQ(run({"set", "PrintOut", value}).status, 0);
        const Ref<ado::Recordset> set = open("tblOtherSettings");
        set->Find("strPropName = 'PrintOut'");
        EXPECT_EQ(set->Fields(2).Value(), Value(stored));
    }
    run({"set", "PrintOut", ""});
    EXPECT_EQ(get("PrintOut"), "\n") << "an empty value is shown as one";
    EXPECT_EQ(run({"set", "it's mine", "x"}).status, 0);
    EXPECT_EQ(get("IT'S MINE"), "x\n");
    for (const char *value : {"first", "last"}) {
        const Ref<ado::Recordset> set = open("tblOtherSettings");
        set->AddNew();
        set->Fields(1).SetValue("another\ntool's");
        set->Fields(2).SetValue(value);
        set->Update();
    }
    EXPECT_EQ(get("another\ntool's"), "last\n") << "as the system reads it";
    EXPECT_EQ(run({"list"}).output.split("\n").filter("another"), QStringList{"another\\ntool's=last"});
    for (const char *command : {"list", "get PrintOut", "export -"})
        EXPECT_EQ(finish(*start(QString(command).split(u' '), "/dev/full")), 1) << command << " with nowhere to go";
}

TEST_F(Settings, RefusesAValueThatTheSystemCouldNotRead) {
    run({"set", "ServiceStart", "9:00"});
    const std::pair<const char *, const char *> cases[] = {
        {"ServiceStart", "soon"},     {"ServiceStart", ""},
        {"DayServiceEnd", "Friday"},  {"OnlineTrackingTimes", "40000"},
        {"AutoTrackingTickets", "x"}, {" ", "x"},
        {"ServiceStart", "8.30"},     {"Region", "de"},
        {"Region", "Germany"}};
    for (const auto &[name, value] : cases)
        EXPECT_EQ(run({"set", name, value}).status, 1) << name << "=" << value;
    EXPECT_EQ(get("ServiceStart"), "9:00\n");
    for (const char *region : {"de-DE", ""})
        EXPECT_EQ(run({"set", "Region", region}).status, 0) << region;
}

TEST_F(Settings, SaysWhatToDoAboutADatabaseThatCannotBeUsed) {
    put("Orvelle.mdb", "not a database");
    const Outcome damaged = run({"set", "KBPath", "x"});
    EXPECT_EQ(damaged.status, 1);
    EXPECT_TRUE(damaged.errors.contains("Restore it from a backup")) << qPrintable(damaged.errors);
    QFile::remove(path("Orvelle.mdb"));

    put("DBConnection.txt", "Provider=SQLOLEDB.1;Data Source=server");
    const Outcome server = run({"list"});
    EXPECT_EQ(server.status, 1);
    EXPECT_TRUE(server.errors.contains("not supported yet")) << qPrintable(server.errors);
}

constexpr char lists[] = "# Orvelle settings 1\n\n"
                         "[settings]\nKBPath\t\\\\\\\\Public\\\\KB\nPrintOut\ta\\r\\nb\n"
                         "[responsibles]\nAnn\tann@x.example\t99.5\nBo\t\t\n"
                         "[problem types]\nPrinter\tHardware\t30\n"
                         "[caller categories]\nStaff\n"
                         "[statuses]\nOpen\n\\#2\n"
                         "[callers]\nCy\tcy@x.example\t+46 1\tStaff\ttab\\there\n"
                         "[end]\n";

TEST_F(Settings, ExportsWhatItImported) {
    put("in.txt", lists);
    ASSERT_EQ(run({"import", path("in.txt")}).status, 0);
    EXPECT_EQ(open("tblPersons")->Fields("curRate").Value(), Value(Currency::fromScaled(995000)));
    EXPECT_EQ(get("KBPath"), "\\\\Public\\KB\n");
    const QString exported = run({"export", "-"}).output;
    for (const char *line : {"Ann\tann@x.example\t99.5000\n", "Printer\tHardware\t30\n", "\\#2\n",
                             "PrintOut\ta\\r\\nb\n", "Cy\tcy@x.example\t+46 1\tStaff\ttab\\there\n"})
        EXPECT_TRUE(exported.contains(line)) << line;

    QTemporaryDir other;
    ASSERT_EQ(run({"export", other.filePath("all.txt")}).status, 0);
    QFile::remove(path("Orvelle.mdb"));
    ASSERT_EQ(run({"import", other.filePath("all.txt")}).status, 0);
    EXPECT_EQ(run({"export", "-"}).output, exported);
}

TEST_F(Settings, AnImportKeepsTheNumbersOfRowsThatStay) {
    ASSERT_EQ(run({"import", "-"}, lists).status, 0);
    ASSERT_EQ(run({"import", "-"}, "# Orvelle settings 1\n[responsibles]\nDi\t\t1\nBO\tbo@x.example\t\n[end]\n").status,
              0);
    const Ref<ado::Recordset> persons = open("tblPersons");
    ASSERT_EQ(persons->RecordCount(), 2);
    EXPECT_EQ(persons->Fields("intPersonID").Value(), Value(qint32{2}));
    EXPECT_EQ(persons->Fields("strEmail").Value(), Value("bo@x.example"));
    persons->MoveNext();
    EXPECT_EQ(persons->Fields("strPersonName").Value(), Value("Di"));
    EXPECT_EQ(open("tblStatuses")->RecordCount(), 2) << "a list that the file does not have stays";
}

TEST_F(Settings, AnImportIsDoneAsAWholeOrNotAtAll) {
    ASSERT_EQ(run({"import", "-"}, lists).status, 0);
    const QString before = run({"export", "-"}).output;
    const QByteArray head = "# Orvelle settings 1\n[statuses]\nNew\n";
    const QByteArray end = "[end]\n";
    const std::pair<QByteArray, const char *> cases[] = {
        {"", "Line 1 "},
        {"[statuses]\nNew\n" + end, "Line 1 "},
        {head, "Line 4 can't be taken: the file ends without"},
        {head + "[responsibles]\nAnn\tx\tmuch\n" + end, "Line 5 can't be taken: \"much\" is no number"},
        {head + "[problem types]\nA\t\t70000\n" + end, "Line 5 can't be taken: 70000 is too large"},
        {head + "[problem types]\nA\t\tnan\n" + end, "Line 5 can't be taken: \"nan\" is no number"},
        {head + "[responsibles]\nAnn\tx\t1e40\n" + end, "Line 5 can't be taken: 1e40 is too large"},
        {head + "[settings]\nKBPath\ta\nkbpath\tb\n" + end, "Line 6 can't be taken: \"kbpath\" comes twice"},
        {head + "[responsibles]\nAnn\t" + QByteArray(256, 'e') + "\t\n" + end, "Line 5 can't be taken: The text has"},
        {head + "[settings]\n" + QByteArray(256, 'n') + "\tv\n" + end, "Line 5 can't be taken: a name takes 255"},
        {head + "[responsibles]\nAnn\n" + end, "Line 5 can't be taken: the row of [responsibles] has 1 fields"},
        {head + "[callers]\nCy\t\t\t\t\ncy\t\t\t\t\n" + end, "Line 6 can't be taken: \"cy\" comes twice"},
        {head + "[caller categories]\n\\e\n" + end, "Line 5 can't be taken: the row of [caller categories] has no"},
        {head + "[nonsense]\n" + end, "Line 4 can't be taken: there is no section"},
        {head + "[statuses]\n" + end, "Line 4 can't be taken: the section comes a second time"},
        {head + "a\\\n" + end, "Line 4 can't be taken: a backslash"},
        {head + "[settings]\nServiceEnd\tlate\n" + end, "Line 5 can't be taken: ServiceEnd needs a time of day"},
        {head + "fine\n\xFF\n" + end, "Line 5 can't be taken: it is no UTF-8"},
        {head + end + "a\n", "Line 5 can't be taken: a row stands behind"},
    };
    for (const bool isNew : {false, true}) {
        if (isNew)
            QFile::remove(path("Orvelle.mdb"));
        for (const auto &[content, message] : cases) {
            const Outcome outcome = run({"import", "-"}, content);
            EXPECT_EQ(outcome.status, 1) << message;
            EXPECT_TRUE(outcome.errors.contains(message)) << qPrintable(outcome.errors);
            EXPECT_EQ(outcome.output, "") << message;
            EXPECT_EQ(isNew ? before : run({"export", "-"}).output, before) << message;
        }
    }
    EXPECT_FALSE(QFile::exists(path("Orvelle.mdb"))) << "a file with a mistake does not make a database either";
}

TEST_F(Settings, AnImportSaysWhatItChanged) {
    EXPECT_TRUE(run({"import", "-"}, lists)
                    .output.endsWith("settings: 2 added: KBPath, PrintOut\n"
                                     "responsibles: 2 added: Ann, Bo\n"
                                     "problem types: 1 added: Printer\n"
                                     "caller categories: 1 added: Staff\n"
                                     "statuses: 2 added: Open, #2\n"
                                     "callers: 1 added: Cy\n"));
    EXPECT_EQ(run({"import", "-"}, lists).output, "Nothing changed: everything in the file is stored already.\n");
    QByteArray many = "# Orvelle settings 1\n[settings]\nkbpath\tx\nOwn\t1\n[statuses]\nOPEN\n";
    for (int at = 0; at < 12; ++at)
        many += "s" + QByteArray::number(at) + "\n";
    EXPECT_EQ(run({"import", "-"}, many + "[problem types]\nprinter\tHardware\t31\n[end]\n").output,
              "settings: 1 added: Own\nsettings: 1 changed: kbpath\n"
              "statuses: 12 added: s0, s1, s2, s3, s4, s5, s6, s7, s8, s9 and 2 more\nstatuses: 1 deleted: #2\n"
              "problem types: 1 changed: Printer\n");
}

/// What people, mails and other tools leave in the tables comes back character by character.
TEST_F(Settings, TakesAwkwardValuesThereAndBack) {
    ASSERT_EQ(run({"import", "-"}, lists).status, 0);
    const QStringList awkward{"it's \"quoted\"; semi;colon, comma\ttab",
                              QString::fromUtf8("\u0395\u03BB\u03BB\u03B7\u03BD\u03B9\u03BA\u03AC \xF0\x9F\x98\x80"),
                              "two\nlines\r\nor\rthree\n",
                              " blanks at both ends ",
                              "  ",
                              "# no comment",
                              "[end]",
                              "\\e",
                              "-1",
                              "NULL",
                              QString(70000, u'x')};
    const Ref<ado::Recordset> set = open("tblOtherSettings");
    const Ref<ado::Recordset> callers = open("tblCallers");
    const Ref<ado::Recordset> persons = open("tblPersons");
    for (qsizetype at = 0; at < awkward.size(); ++at) {
        set->AddNew();
        set->Fields("strPropName").SetValue(at % 2 == 0 ? awkward[at].left(200) + "x" : QString("name %1").arg(at));
        set->Fields("strPropValue").SetValue(awkward[at]);
        set->Update();
        callers->AddNew();
        for (const char *column : {"strFullName", "strEmail", "strComment", "strCategory"})
            callers->Fields(column).SetValue(awkward[at].left(255));
        callers->Update();
    }
    for (const qint64 scaled : {std::numeric_limits<qint64>::max() - 1, qint64{-1}, qint64{0}}) {
        persons->AddNew();
        persons->Fields("strPersonName").SetValue(QString::number(scaled));
        persons->Fields("curRate").SetValue(Currency::fromScaled(scaled));
        persons->Update();
    }
    const auto rows = [this] {
        QStringList texts;
        for (const char *table : {"tblOtherSettings", "tblCallers", "tblPersons", "tblTypes", "tblStatuses"}) {
            for (const Ref<ado::Recordset> all = open(table); !all->IsEOF(); all->MoveNext()) {
                QString row;
                for (int at = 1; at < all->FieldCount(); ++at) {
                    const Value value = all->Fields(at).Value();
                    row += value.isNull()            ? QString()
                           : value.holds<Currency>() ? QString::number(std::get<Currency>(value.held()).scaled())
                                                     : toText(value);
                    row += u'|';
                }
                texts.append(row);
            }
        }
        texts.sort();
        return texts;
    };
    const QStringList before = rows();
    QTemporaryDir other;
    ASSERT_EQ(run({"export", other.filePath("all.txt")}).status, 0);
    EXPECT_EQ(run({"import", other.filePath("all.txt")}).output,
              "Nothing changed: everything in the file is stored already.\n");
    set->Close();
    for (const char *ending : {"", "-wal", "-shm"})
        QFile::remove(path("Orvelle.mdb") + ending);
    ASSERT_EQ(run({"import", other.filePath("all.txt")}).status, 0);
    EXPECT_EQ(rows().join("\n").toStdString(), before.join("\n").toStdString());
}

TEST(SettingsFile, AnyRowsAreReadBack) {
    const QString signs = QString("\\\t\n\r#[]e a") + QChar(0x4E2D) + QChar(0);
    for (unsigned seed = 0; seed < 5000; ++seed) {
        std::mt19937 random(seed);
        settings::Section section{"some section", {}, 0};
        for (std::size_t rows = random() % 4; rows > 0; --rows) {
            QStringList row;
            for (std::size_t fields = 1 + random() % 3; fields > 0; --fields) {
                QString field;
                for (std::size_t length = random() % 5; length > 0; --length)
                    field += signs[static_cast<qsizetype>(random() % static_cast<unsigned>(signs.size()))];
                row.append(field);
            }
            section.rows.append({row, 0});
        }
        const QList<settings::Section> read = settings::readSections(settings::writeSections({section}, {"heading"}));
        ASSERT_EQ(read.size(), 1);
        ASSERT_EQ(read[0].name, section.name);
        ASSERT_TRUE(std::ranges::equal(read[0].rows, section.rows, {}, &settings::Row::fields, &settings::Row::fields))
            << seed;
    }
}

} // namespace

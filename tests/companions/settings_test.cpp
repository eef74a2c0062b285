// The settings program as a process, as a script calls it, on an installation folder of its own.

#include "companions/settings/settingsfile.h"
#include "platform/ado/recordset.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <random>

namespace {

struct Outcome {
    int status;
    QString output;
    QString errors;
};

class SettingsProgram : public ::testing::Test {
  protected:
    Outcome run(const QStringList &arguments, const QByteArray &input = {}) {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("ORVELLE_HOME", m_home.path());
        process.setProcessEnvironment(environment);
        process.start(SETTINGS_PROGRAM, arguments);
        process.write(input);
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished(60000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }
    QString get(const QString &name) { return run({"get", name}).output; }
    [[nodiscard]] QString path(const QString &name) const { return m_home.filePath(name); }
    void put(const QString &name, const QByteArray &content) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QFile::WriteOnly) && file.write(content) == content.size());
    }

    Ref<ado::Recordset> open(const QString &table) {
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

    QTemporaryDir m_home;
};

TEST_F(SettingsProgram, TellsWrongUsageFromFailure) {
    const std::pair<QStringList, int> cases[] = {
        {{}, 2},
        {{"nonsense"}, 2},
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
}

TEST_F(SettingsProgram, TheFirstSettingCreatesTheDatabaseAsAFirstStartDoes) {
    EXPECT_EQ(run({"set", "emailsubfolders", "1"}).status, 0);
    EXPECT_EQ(get("EmailSubFolders"), "1\n");
    EXPECT_EQ(get("ServiceStart"), "8:00:00 AM\n");
    const QJsonObject all = QJsonDocument::fromJson(run({"list", "--json"}).output.toUtf8()).object();
    EXPECT_EQ(all.value("EmailSubFolders").toString(), "1") << "under the name that the system has for it";
    EXPECT_EQ(all.value("DayServiceEnd").toString(), "4");
    EXPECT_TRUE(run({"list"}).output.contains("DayServiceEnd=4\n"));
}

TEST_F(SettingsProgram, StoresValuesAsTheSystemReadsThem) {
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
}

TEST_F(SettingsProgram, RefusesAValueThatTheSystemCouldNotRead) {
    run({"set", "ServiceStart", "9:00"});
    const std::pair<const char *, const char *> cases[] = {
        {"ServiceStart", "soon"},         {"ServiceStart", ""},         {"DayServiceEnd", "Friday"},
        {"OnlineTrackingTimes", "40000"}, {"AutoTrackingTickets", "x"}, {" ", "x"}};
    for (const auto &[name, value] : cases)
        EXPECT_EQ(run({"set", name, value}).status, 1) << name << "=" << value;
    EXPECT_EQ(get("ServiceStart"), "9:00\n");
}

TEST_F(SettingsProgram, SaysWhatToDoAboutADatabaseThatCannotBeUsed) {
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
                         "[callers]\nCy\tcy@x.example\t+46 1\tStaff\ttab\\there\n";

TEST_F(SettingsProgram, ExportsWhatItImported) {
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

TEST_F(SettingsProgram, AnImportKeepsTheNumbersOfRowsThatStay) {
    ASSERT_EQ(run({"import", "-"}, lists).status, 0);
    ASSERT_EQ(run({"import", "-"}, "# Orvelle settings 1\n[responsibles]\nDi\t\t1\nBO\tbo@x.example\t\n").status, 0);
    const Ref<ado::Recordset> persons = open("tblPersons");
    ASSERT_EQ(persons->RecordCount(), 2);
    EXPECT_EQ(persons->Fields("intPersonID").Value(), Value(qint32{2}));
    EXPECT_EQ(persons->Fields("strEmail").Value(), Value("bo@x.example"));
    persons->MoveNext();
    EXPECT_EQ(persons->Fields("strPersonName").Value(), Value("Di"));
    EXPECT_EQ(open("tblStatuses")->RecordCount(), 2) << "a list that the file does not have stays";
}

TEST_F(SettingsProgram, AnImportIsDoneAsAWholeOrNotAtAll) {
    ASSERT_EQ(run({"import", "-"}, lists).status, 0);
    const QString before = run({"export", "-"}).output;
    const QByteArray head = "# Orvelle settings 1\n[statuses]\nNew\n";
    const std::pair<QByteArray, const char *> cases[] = {
        {"", "does not begin"},
        {"[statuses]\nNew\n", "does not begin"},
        {head + "[responsibles]\nAnn\tx\tmuch\n", "no number"},
        {head + "[responsibles]\nAnn\n", "needs 3"},
        {head + "[callers]\nCy\t\t\t\t\ncy\t\t\t\t\n", "comes twice"},
        {head + "[caller categories]\n\\e\n", "no name"},
        {head + "[nonsense]\n", "no section"},
        {head + "[statuses]\n", "second time"},
        {head + "a\\", "Line 4"},
        {head + "[settings]\nServiceEnd\tlate\n", "time of day"},
        {head + "\xFF\n", "UTF-8"},
    };
    for (const auto &[content, message] : cases) {
        const Outcome outcome = run({"import", "-"}, content);
        EXPECT_EQ(outcome.status, 1) << message;
        EXPECT_TRUE(outcome.errors.contains(message)) << qPrintable(outcome.errors);
        EXPECT_EQ(run({"export", "-"}).output, before) << message;
    }
}

TEST(SettingsFile, AnyRowsAreReadBack) {
    const QString signs = QString("\\\t\n\r#[]e a") + QChar(0x4E2D) + QChar(0);
    for (unsigned seed = 0; seed < 5000; ++seed) {
        std::mt19937 random(seed);
        settings::Section section{"some section", {}};
        for (std::size_t rows = random() % 4; rows > 0; --rows) {
            QStringList row;
            for (std::size_t fields = 1 + random() % 3; fields > 0; --fields) {
                QString field;
                for (std::size_t length = random() % 5; length > 0; --length)
                    field += signs[static_cast<qsizetype>(random() % static_cast<unsigned>(signs.size()))];
                row.append(field);
            }
            section.rows.append(row);
        }
        const QList<settings::Section> read = settings::readSections(settings::writeSections({section}, {"heading"}));
        ASSERT_EQ(read.size(), 1);
        ASSERT_EQ(read[0].name, section.name);
        ASSERT_EQ(read[0].rows, section.rows) << seed;
    }
}

} // namespace

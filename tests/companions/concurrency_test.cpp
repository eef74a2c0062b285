// Programs side by side on one database: what each of them and a plain tool see while the others write, and what a
// killed one leaves.

#include "companions/program.h"
#include "companions/settings/settingsfile.h"
#include "support/files.h"

#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QUuid>

namespace {

class SideBySide : public SettingsProgram {
  protected:
    [[nodiscard]] QString database() const { return path("Orvelle.mdb"); }

    /// A file whose callers and responsibles, 300 of each, all carry the mark. Every other name is the mark's own, so
    /// that an import adds, changes and deletes.
    QString listsOf(const QString &mark) {
        settings::Section callers{"callers", {}, 0};
        settings::Section persons{"responsibles", {}, 0};
        for (int at = 0; at < 300; ++at) {
            const QString name = at % 2 == 0 ? QString::number(at) : mark + QString::number(at);
            callers.rows.append({{name, mark, "", "", mark}, 0});
            persons.rows.append({{name, mark, "1"}, 0});
        }
        return writtenFile(path(mark + ".txt"), settings::writeSections({callers, persons}, {"", ""}));
    }

    static constexpr char whole[] = "SELECT (SELECT count(*) FROM tblCallers) || ' ' || "
                                    "(SELECT count(*) FROM tblPersons) || ' ' || "
                                    "(SELECT count(*) FROM (SELECT strComment FROM tblCallers UNION "
                                    "SELECT strEmail FROM tblPersons))";
    static constexpr char wholeLists[] = "300 300 1";

    /// By the bare library; by the command-line tool where the machine has it.
    QString ask(const QString &statement) {
        const QString tool = QStandardPaths::findExecutable("sqlite3");
        QString answer;
        {
            QSqlDatabase bare = QSqlDatabase::addDatabase("QSQLITE", "bare");
            bare.setDatabaseName(database());
            EXPECT_TRUE(bare.open());
            QSqlQuery query(bare);
            EXPECT_TRUE(query.exec(statement) && query.next());
            answer = query.value(0).toString();
        }
        QSqlDatabase::removeDatabase("bare");
        if (!tool.isEmpty() && answer == wholeLists) {
            QProcess process;
            process.start(tool, {"-readonly", "-cmd", ".timeout 10000", database(), statement});
            EXPECT_TRUE(process.waitForFinished(60000));
            answer = QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError()).trimmed();
        }
        return answer;
    }
};

TEST_F(SideBySide, NobodySeesHalfOfAnImportAndAKilledOneLeavesNone) {
    const QStringList files{listsOf("a"), listsOf("b")};
    ASSERT_EQ(finish(*start({"import", files[0]})), 0);
    ASSERT_EQ(ask(whole).toStdString(), wholeLists);
    std::array<Process, 2> writers;
    std::array<int, 2> done{};
    int looks = 0;
    int killed = 0;
    QSet<QString> seen;
    QElapsedTimer clock;
    clock.start();
    while (done[0] < 8 || done[1] < 8 || killed < 4) {
        ASSERT_LT(clock.elapsed(), 200000);
        for (std::size_t at = 0; at < writers.size(); ++at) {
            if (writers[at] && !writers[at]->waitForFinished(0) && writers[at]->state() != QProcess::NotRunning) {
                // Now and then one dies in the middle of its work, but not so often that a slow machine gets none done.
                if (killed >= 4 || ++looks % 5 != 0)
                    continue;
                writers[at]->kill();
                finish(*writers[at]);
                ++killed;
            }
            if (writers[at] && writers[at]->exitStatus() == QProcess::NormalExit) {
                EXPECT_EQ(writers[at]->exitCode(), 0) << writers[at]->readAllStandardError().toStdString();
                ++done[at];
            }
            writers[at] = start({"import", files[static_cast<qsizetype>(at)]});
        }
        ASSERT_EQ(ask(whole).toStdString(), wholeLists);
        seen.insert(ask("SELECT strComment FROM tblCallers LIMIT 1"));
        const Process exporter = start({"export", "-"});
        ASSERT_EQ(finish(*exporter), 0);
        const QByteArray exported = exporter->readAllStandardOutput();
        EXPECT_NE(exported.contains("\ta\t"), exported.contains("\tb\t"));
    }
    for (const Process &writer : writers)
        finish(*writer);
    EXPECT_EQ(seen, QSet<QString>({"a", "b"})) << "both were at work";
    EXPECT_EQ(ask("PRAGMA integrity_check"), "ok");
}

TEST_F(SideBySide, NoneOfTheirSettingsIsLost) {
    // Each of these finds no database and makes one.
    std::array<Process, 4> first;
    for (Process &each : first)
        each = start({"set", QUuid::createUuid().toString(), "first"});
    for (const Process &each : first)
        EXPECT_EQ(finish(*each), 0) << each->readAllStandardError().toStdString();
    EXPECT_EQ(ask("SELECT count(*) FROM tblOtherSettings WHERE strPropValue = 'first'"), "4");
    constexpr int each = 12;
    for (int at = 0; at < each; ++at) {
        const Process one = start({"set", QString("one %1").arg(at), "1"});
        const Process two = start({"set", QString("two %1").arg(at), "2"});
        const Process same = start({"set", "both", QString::number(at)});
        const Process other = start({"set", "both", QString::number(-at)});
        EXPECT_EQ(finish(*one), 0) << one->readAllStandardError().toStdString();
        EXPECT_EQ(finish(*two), 0) << two->readAllStandardError().toStdString();
        EXPECT_EQ(finish(*same) + finish(*other), 0) << "on one row the later of two waits";
        EXPECT_EQ(std::abs(ask("SELECT strPropValue FROM tblOtherSettings WHERE strPropName = 'both'").toInt()), at);
    }
    EXPECT_EQ(ask("SELECT count(*) FROM tblOtherSettings WHERE strPropName = 'both'"), "1");
    EXPECT_EQ(ask("SELECT count(*) FROM tblOtherSettings WHERE strPropName LIKE 'one %' AND strPropValue = '1'"), "12");
    EXPECT_EQ(ask("SELECT count(*) FROM tblOtherSettings WHERE strPropName LIKE 'two %' AND strPropValue = '2'"), "12");
}

} // namespace

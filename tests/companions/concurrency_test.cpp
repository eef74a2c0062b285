// Programs side by side on one database: what each of them and a plain tool see while the others write, and what a
// killed one leaves.

#include "companions/program.h"
#include "companions/settings/settingsfile.h"
#include "support/files.h"
#include "support/plaintool.h"

#include <QElapsedTimer>
#include <QStandardPaths>
#include <QThread>

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
    QString ask(const QString &statement) { return ask(statement, database()); }
    static QString ask(const QString &statement, const QString &file) {
        const QString answer = plainTool(file, {statement}).value(0).value(0);
        const QString tool = QStandardPaths::findExecutable("sqlite3");
        if (tool.isEmpty() || answer != wholeLists)
            return answer;
        QProcess process;
        process.start(tool, {"-readonly", "-cmd", ".timeout 10000", file, statement});
        EXPECT_TRUE(process.waitForFinished(60000));
        return QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError()).trimmed();
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

/// Backups beside a program that imports now one set of lists, now the other: each holds one of them, whole.
TEST_F(SideBySide, ABackupIsOfOneMomentAlsoWhereItWasCutOffBefore) {
    const QStringList files{listsOf("a"), listsOf("b")};
    ASSERT_EQ(finish(*start({"import", files[0]})), 0);
    Process writer;
    int cutOff = 0;
    for (int round = 0; round < 16; ++round) {
        if (!writer || writer->state() == QProcess::NotRunning)
            writer = start({"import", files[round % 2]});
        const Process backup = start({"backup", path("kept.mdb"), "--replace"});
        if (round % 2 == 1) {
            EXPECT_TRUE(backup->waitForStarted());
            QThread::msleep(static_cast<unsigned long>(round) * 2);
            backup->kill();
        }
        finish(*backup);
        cutOff += backup->exitStatus() == QProcess::CrashExit ? 1 : 0;
        EXPECT_TRUE(round % 2 == 1 || backup->exitCode() == 0) << backup->readAllStandardError().toStdString();
        QFile::remove(path("looked.mdb"));
        ASSERT_TRUE(QFile::copy(path("kept.mdb"), path("looked.mdb")));
        EXPECT_EQ(ask(whole, path("looked.mdb")).toStdString(), wholeLists) << round;
    }
    EXPECT_GT(cutOff, 0);
    finish(*writer);
}

TEST_F(SideBySide, ABackupIsPutBackWholeOrNotAtAll) {
    ASSERT_EQ(finish(*start({"set", "KBPath", "before"})), 0);
    const QString kept = path("kept.mdb");
    ASSERT_EQ(finish(*start({"backup", kept})), 0);
    EXPECT_EQ(finish(*start({"backup", kept})), 1) << "nothing is written over unasked";
    EXPECT_EQ(finish(*start({"backup", database(), "--replace"})), 1) << "least of all the database";
    ASSERT_EQ(finish(*start({"set", "KBPath", "after"})), 0);
    const auto value = [&] { return ask("SELECT strPropValue FROM tblOtherSettings WHERE strPropName = 'KBPath'"); };

    const QByteArray good = contentOf(kept);
    QByteArray flipped = good;
    flipped[good.size() - 100] = static_cast<char>(flipped[good.size() - 100] ^ 1);
    for (const QByteArray &bad : {flipped, good.left(good.size() / 2), QByteArray(), QByteArray("Dear all")}) {
        writtenFile(kept, bad);
        EXPECT_EQ(finish(*start({"restore", kept})), 1) << bad.size();
        // Without its sum, what is no database at all is refused still.
        QFile::rename(kept + ".sha256", kept + ".away");
        EXPECT_TRUE(bad == flipped || finish(*start({"restore", kept})) == 1) << bad.size();
        QFile::rename(kept + ".away", kept + ".sha256");
        EXPECT_EQ(value(), "after");
    }
    writtenFile(kept, good);
    {
        QSqlDatabase open = QSqlDatabase::addDatabase("QSQLITE", "open");
        open.setDatabaseName(database());
        ASSERT_TRUE(open.open());
        ASSERT_TRUE(QSqlQuery(open).exec("SELECT count(*) FROM tblTickets"));
        EXPECT_EQ(finish(*start({"restore", kept})), 1) << "while a program has it open";
    }
    QSqlDatabase::removeDatabase("open");
    const Process restore = start({"restore", kept});
    EXPECT_EQ(finish(*restore), 0) << restore->readAllStandardError().toStdString();
    EXPECT_EQ(value(), "before");
    EXPECT_TRUE(QFile::exists(database() + ".before-restore-1"));
    EXPECT_EQ(finish(*start({"set", "KBPath", "later"})), 0);

    // After everything else was lost.
    for (const char *ending : {"", "-wal", "-shm"})
        QFile::remove(database() + ending);
    EXPECT_EQ(finish(*start({"restore", kept})), 0);
    EXPECT_EQ(value(), "before");
}

} // namespace

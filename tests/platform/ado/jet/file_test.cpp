// The file as the outside world leaves it: missing, damaged, read-only, full, in use, renamed.

#include "platform/ado/jet/file.h"
#include "platform/ado/jet/fileengine.h"
#include "support/child.h"
#include "support/files.h"

#include <barrier>
#include <thread>

namespace {

class JetFileTest : public ::testing::Test {
  protected:
    QString put(const QString &name, const QByteArray &content) {
        return writtenFile(m_directory.filePath(name), content);
    }
    void addRow(const Ref<ado::Connection> &connection, const QString &text) {
        const Ref<ado::Recordset> set = openRecordset(connection, "tblAll");
        set->AddNew();
        set->Fields("strText").SetValue(text);
        set->Update();
    }
    qint32 rows() { return openRecordset(m_engine.connect(), "tblAll")->RecordCount(); }

    QTemporaryDir m_directory;
    FileEngine m_engine;
};

TEST_F(JetFileTest, SaysWhatIsWrongWithTheFile) {
    {
        const Ref<ado::Connection> connection = m_engine.connect();
        for (int at = 0; at < 160; ++at)
            addRow(connection, QString(250, u'x'));
    }
    // Another program's, so that not even its mode is ours to change.
    const QByteArray whole = contentOf(m_engine.file()).replace("jet_properties", "other_property");
    ASSERT_GT(whole.size(), 30000);
    const std::pair<QString, const char *> cases[] = {
        {m_directory.filePath("none.mdb"), "Could not find"},
        {m_directory.path(), "Could not find"},
        {put("empty.mdb", ""), "damaged"},
        {put("text.mdb", "Standard Jet DB, but not of this kind; padding follows to be longer than any header is. " +
                             QByteArray(4096, 'x')),
         "damaged"},
        {put("header.mdb", whole.left(100) + QByteArray(4000, '\x7F')), "damaged"},
        {put("one byte.mdb", "x"), "damaged"},
        {put("short.mdb", whole.left(300)), "damaged"},
        {put("half.mdb", whole.left(whole.size() / 2)), "damaged"},
        {put("hole.mdb", whole.left(8192) + QByteArray(whole.size() - 8192, '\x7F')), "damaged"},
        {put("older.mdb", QByteArray(whole).replace("tblAll", "tblOld")), "older version"},
    };
    for (const auto &[path, word] : cases) {
        SCOPED_TRACE(qPrintable(path));
        for (const char withLog : {'\2', '\1'}) {
            QByteArray before = contentOf(path);
            if (before.size() > 20) {
                before[18] = before[19] = withLog;
                writtenFile(path, before);
            }
            expectFailure([&, file = path] { openRecordset(FileEngine::connectTo(file), "tblAll"); },
                          path.contains("older") ? ado::statementFailed : failures::unspecified, {word});
            EXPECT_EQ(contentOf(path), before) << int{withLog};
        }
    }
    EXPECT_FALSE(QFile::exists(m_directory.filePath("none.mdb"))) << "opening never makes a file";
}

TEST_F(JetFileTest, TakesPathsWithBothSeparatorsAndOddSigns) {
    const QString path = put(QString::fromUtf8("odd %20 #?&\u00E9.mdb"), contentOf(m_engine.file()));
    QString text = path;
    EXPECT_EQ(failureOf([&] { FileEngine::connectTo(text.replace('/', '\\')); }), 0);
}

TEST_F(JetFileTest, AReadOnlyFileIsReadAndNotWritten) {
    addRow(m_engine.connect(), "a");
    ASSERT_TRUE(QFile::setPermissions(m_engine.file(), QFile::ReadOwner | QFile::ReadUser));
    const Ref<ado::Connection> connection = m_engine.connect();
    EXPECT_EQ(openRecordset(connection, "Select * from tblAll where strText = '1'")->RecordCount(), 0);
    expectFailure([&] { addRow(connection, "b"); }, failures::unspecified, {"read-only"});
    EXPECT_EQ(rows(), 1);
}

TEST_F(JetFileTest, AFullDiskLeavesTheRowAsItWas) {
    const Ref<ado::Connection> connection = m_engine.connect();
    addRow(connection, "a");
    ado::Command limit;
    limit.SetActiveConnection(connection);
    limit.SetCommandText("PRAGMA max_page_count = 4");
    limit.Execute();
    const Ref<ado::Recordset> set = openRecordset(connection, "tblAll");
    set->AddNew();
    set->Fields("strMemo").SetValue(QString(100000, u'x'));
    expectFailure([&] { set->Update(); }, failures::unspecified, {"full"});
    addRow(connection, "b");
    EXPECT_EQ(rows(), 2);
}

TEST_F(JetFileTest, AWriterWaitsForAnotherAndGivesUpInTime) {
    const Ref<ado::Connection> mine = m_engine.connect();
    const Ref<ado::Connection> theirs = m_engine.connect();
    ado::Command lock;
    lock.SetActiveConnection(theirs);
    lock.SetCommandText("BEGIN IMMEDIATE");
    lock.Execute();
    expectFailure([&] { addRow(mine, "a"); }, failures::unspecified, {"another program"});
    EXPECT_EQ(openRecordset(mine, "tblAll")->RecordCount(), 0) << "readers are not held up";
    lock.SetCommandText("COMMIT");
    lock.Execute();
    EXPECT_EQ(failureOf([&] { addRow(mine, "a"); }), 0);
}

TEST_F(JetFileTest, WritersSideBySideLoseNothingAndReadersSeeNoHalfRow) {
    constexpr int each = 40;
    static_cast<void>(m_engine.connect());
    const auto write = [this](int writer) {
        const Ref<ado::Connection> connection = FileEngine::connectTo(m_engine.file());
        const Ref<ado::Recordset> set = openRecordset(connection, "tblAll");
        for (int at = 0; at < each; ++at) {
            set->AddNew();
            const QString text = QString("%1-%2").arg(writer).arg(at);
            set->Fields("strText").SetValue(text);
            set->Fields("strMemo").SetValue(text.repeated(2000));
            set->Update();
        }
    };
    std::jthread one([&] { write(1); });
    std::jthread two([&] { write(2); });
    const Ref<ado::Connection> reader = m_engine.connect();
    for (qint32 seen = 0; seen < 2 * each;) {
        const Ref<ado::Recordset> set = openRecordset(reader, "tblAll");
        EXPECT_GE(set->RecordCount(), seen);
        seen = set->RecordCount();
        for (; !set->IsEOF(); set->MoveNext())
            EXPECT_EQ(std::get<QString>(set->Fields("strMemo").Value().held()),
                      std::get<QString>(set->Fields("strText").Value().held()).repeated(2000));
    }
    one.join();
    two.join();
    EXPECT_EQ(rows(), 2 * each);
}

TEST_F(JetFileTest, AValueAgainstItsTypeIsShownAndFailsWhereItIsUsed) {
    plainTool(m_engine.file(), {"INSERT INTO tblAll (intShort, dteDate, strText) VALUES (70000, 'soon', 5)"});
    const Ref<ado::Recordset> set = openRecordset(m_engine.connect(), "tblAll");
    EXPECT_EQ(set->Fields("intShort").Value(), Value(qint32{70000}));
    EXPECT_EQ(set->Fields("dteDate").Value(), Value("soon"));
    EXPECT_EQ(set->Fields("strText").Value(), Value("5"));
    set->Fields("strText").SetValue("6");
    EXPECT_EQ(failureOf([&] { set->Update(); }), 0);
}

TEST_F(JetFileTest, OpeningItAgainKeepsOtherProgramsOut) {
    int go[2];
    ASSERT_EQ(::pipe(go), 0);
    Child other([&](int) {
        char byte = 0;
        static_cast<void>(::read(go[0], &byte, 1));
        return failureOf([&] { ado::moveJetFile(m_engine.file(), m_engine.file() + ".moved"); });
    });
    const Ref<ado::Connection> first = m_engine.connect();
    addRow(first, "a");
    const Ref<ado::Connection> second = m_engine.connect();
    report(go[1], 'g');
    EXPECT_EQ(other.wait(), failures::permissionDenied);
}

TEST_F(JetFileTest, MovesAFileWithEverythingCommittedAndOnlyWhenNobodyHasIt) {
    const QString moved = m_engine.file() + ".moved";
    Ref<ado::Connection> open = m_engine.connect();
    addRow(open, "a");
    EXPECT_EQ(failureOf([&] { ado::moveJetFile(m_engine.file(), moved); }), failures::permissionDenied);
    addRow(open, "b");
    EXPECT_EQ(rows(), 2) << "the user of the file goes on";
    ado::Command alone;
    alone.SetActiveConnection(open);
    for (const char *statement : {"PRAGMA journal_mode=DELETE", "BEGIN EXCLUSIVE"}) {
        alone.SetCommandText(statement);
        alone.Execute();
    }
    EXPECT_EQ(failureOf([&] { ado::moveJetFile(m_engine.file(), moved); }), failures::permissionDenied)
        << "not even to be read";

    open->Close();
    ado::moveJetFile(m_engine.file(), moved);
    EXPECT_FALSE(QFile::exists(m_engine.file()));
    EXPECT_EQ(openRecordset(FileEngine::connectTo(moved), "tblAll")->RecordCount(), 2);

    EXPECT_EQ(failureOf([&] { ado::moveJetFile(m_engine.file(), moved); }), failures::fileNotFound);
    const QString other = put("other.mdb", "no database");
    EXPECT_EQ(failureOf([&] { ado::moveJetFile(other, moved); }), failures::fileExists);
    EXPECT_EQ(failureOf([&] { ado::moveJetFile(other, other + "2"); }), 0);
    EXPECT_EQ(contentOf(other + "2"), "no database");
}

TEST_F(JetFileTest, NothingIsWrittenIntoAFileThatHasLostItsName) {
    const QByteArray other = contentOf(m_engine.file());
    const auto take = [&] { return QFile::rename(m_engine.file(), m_engine.file() + ".away"); };
    const struct {
        const char *name;
        std::function<bool()> change;
    } cases[] = {
        {"renamed", take},
        {"removed", [&] { return QFile::remove(m_engine.file()); }},
        {"replaced", [&] { return take() && !writtenFile(m_engine.file(), other).isEmpty(); }},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(each.name);
        ado::removeJetFile(m_engine.file());
        writtenFile(m_engine.file(), other);
        const Ref<ado::Connection> connection = m_engine.connect();
        addRow(connection, "before");
        ASSERT_TRUE(each.change());
        expectFailure([&] { addRow(connection, "behind"); }, failures::unspecified, {"was removed", "start again"});
        expectFailure([&] { const ado::Transaction transaction(*connection); }, failures::unspecified, {"was removed"});
        QFile::remove(m_engine.file() + ".away");
    }
}

TEST_F(JetFileTest, OfTwoFilesThatAreGivenOneNameAtOnceTheFirstKeepsIt) {
    const QByteArray content = contentOf(m_engine.file());
    for (int round = 0; round < 60; ++round) {
        const QString name = m_directory.filePath(QString("taken%1.mdb").arg(round));
        std::array<qint32, 2> outcomes{};
        for (std::size_t at = 0; at < 2; ++at) {
            const QString own = name + QString::number(at);
            put(own.section(u'/', -1), content);
            plainTool(own, {QString("INSERT INTO tblAll (strText) VALUES ('%1')").arg(at)});
        }
        {
            std::barrier start(2);
            const auto move = [&](std::size_t at) {
                start.arrive_and_wait();
                outcomes[at] = failureOf([&] { ado::moveJetFile(name + QString::number(at), name); });
            };
            std::jthread one([&] { move(0); });
            std::jthread two([&] { move(1); });
        }
        const std::size_t winner = outcomes[0] == 0 ? 0 : 1;
        EXPECT_EQ(outcomes[winner], 0);
        EXPECT_EQ(outcomes[1 - winner], failures::fileExists);
        EXPECT_TRUE(QFile::exists(name + QString::number(1 - winner))) << "the other one is whole";
        EXPECT_EQ(column(openRecordset(FileEngine::connectTo(name), "tblAll"), "strText"), QString::number(winner));
    }
}

} // namespace

// The log that a killed program leaves, beside the file it belongs to and beside others.

#include "platform/ado/jet/fileengine.h"
#include "support/child.h"
#include "support/files.h"

#include <QtEndian>

namespace {

class LeftLog : public ::testing::Test {
  protected:
    static void add(const Ref<ado::Connection> &connection, int from, int to) {
        const Ref<ado::Recordset> set = openRecordset(connection, "tblAll");
        for (int at = from; at < to; ++at) {
            set->AddNew();
            set->Fields("strText").SetValue(QString::number(at));
            set->Fields("strMemo").SetValue(QString(3000, u'x'));
            set->Update();
        }
    }
    static void run(const Ref<ado::Connection> &connection, const QString &statement) {
        ado::Command command;
        command.SetActiveConnection(connection);
        command.SetCommandText(statement);
        command.Execute();
    }
    /// A session that is closed in order, and the file that it leaves.
    QByteArray session(int from, int to) {
        add(m_engine.connect(), from, to);
        return contentOf(m_engine.file());
    }
    [[nodiscard]] QByteArray log() const { return contentOf(m_engine.file() + "-wal"); }

    /// What a kill leaves, with any file in the place of the database.
    QString leave(const QByteArray &file, const QByteArray &log) {
        QString path = m_directory.filePath(QString("left%1.mdb").arg(++m_left));
        writtenFile(path, file);
        writtenFile(path + "-wal", log);
        return path;
    }
    void expectPlayed(const QString &path, qint32 rows) {
        const Ref<ado::Connection> connection = FileEngine::connectTo(path);
        EXPECT_EQ(openRecordset(connection, "tblAll")->RecordCount(), rows);
        EXPECT_EQ(
            column(openRecordset(connection, "SELECT integrity_check FROM pragma_integrity_check"), "integrity_check"),
            "ok");
    }
    void expectRefused(const QString &path) {
        const QByteArray file = contentOf(path);
        const QByteArray log = contentOf(path + "-wal");
        expectFailure([&] { FileEngine::connectTo(path); }, failures::unspecified,
                      {"belongs to another file", "move the log away"});
        EXPECT_EQ(contentOf(path), file);
        EXPECT_EQ(contentOf(path + "-wal"), log);
    }

    QTemporaryDir m_directory;
    FileEngine m_engine;
    int m_left = 0;
};

TEST_F(LeftLog, IsPlayedIntoItsOwnFileAndIntoNoOlderOne) {
    const QByteArray first = session(0, 20);
    const QByteArray second = session(20, 40);
    const Ref<ado::Connection> killed = m_engine.connect();
    add(killed, 40, 60);
    expectPlayed(leave(contentOf(m_engine.file()), log()), 60);
    expectPlayed(leave(second, log()), 60);
    const QString refused = leave(first, log());
    expectRefused(refused);
    ASSERT_TRUE(QFile::remove(refused + "-wal"));
    expectPlayed(refused, 20);
}

TEST_F(LeftLog, IsKnownAfterItBeganAnewInTheMiddleOfASession) {
    session(0, 20);
    const Ref<ado::Connection> killed = m_engine.connect();
    add(killed, 20, 40);
    run(killed, "PRAGMA wal_checkpoint");
    const QByteArray copied = contentOf(m_engine.file());
    for (int round = 0; round < 3; ++round) {
        add(killed, 40 + round, 41 + round);
        expectPlayed(leave(contentOf(m_engine.file()), log()), 41 + round);
        run(killed, "PRAGMA wal_checkpoint");
        expectPlayed(leave(contentOf(m_engine.file()), log()), 41 + round);
    }
    add(killed, 43, 44);
    expectRefused(leave(copied, log()));
}

TEST_F(LeftLog, IsPlayedAfterAKillAtAnyPointOfItsTakingIn) {
    session(0, 20);
    const Ref<ado::Connection> killed = m_engine.connect();
    add(killed, 20, 30);
    QByteArray file = contentOf(m_engine.file());
    const QByteArray frames = log();
    constexpr qsizetype page = 4096;
    constexpr qsizetype frame = page + 24;
    ASSERT_GT(frames.size(), 10 * frame);
    for (qsizetype at = 32; at + frame <= frames.size(); at += frame) {
        const qsizetype place = (qFromBigEndian<quint32>(frames.constData() + at) - 1) * page;
        file.resize(std::max(file.size(), place + page));
        file.replace(place, page, frames.mid(at + 24, page));
        expectPlayed(leave(file, frames), 30);
    }
    // The log of a machine that lost its power ends anywhere.
    for (qsizetype cut = 0; cut < frames.size(); cut += 1000)
        EXPECT_EQ(failureOf([&] { FileEngine::connectTo(leave(contentOf(m_engine.file()), frames.left(cut))); }), 0)
            << cut;
}

TEST_F(LeftLog, OfSeveralWritersIsEverybodys) {
    session(0, 20);
    const QByteArray old = session(20, 30);
    session(30, 31);
    {
        const Ref<ado::Connection> one = m_engine.connect();
        const Ref<ado::Connection> other = m_engine.connect();
        for (int at = 31; at < 51; ++at) {
            add(at % 2 == 0 ? one : other, at, at + 1);
            if (at % 5 == 0)
                run(other, "PRAGMA wal_checkpoint");
            expectPlayed(leave(contentOf(m_engine.file()), log()), at + 1);
            EXPECT_EQ(failureOf([&] { m_engine.connect(); }), 0);
        }
        expectRefused(leave(old, log()));
    }
    expectPlayed(m_engine.file(), 51);
}

TEST_F(LeftLog, OfProgramsThatWereKilledWhileOthersOpenedTheFileHasAllThatTheyCommitted) {
    const QByteArray old = session(0, 10);
    qint32 committed = 10;
    const auto write = [this](int output) {
        const Ref<ado::Connection> connection = m_engine.connect();
        run(connection, "PRAGMA wal_autocheckpoint = 7");
        for (;;) {
            if (!Attempt([&] { add(connection, 1, 2); }))
                report(output, '.');
        }
        return 0;
    };
    for (int round = 0; round < 3; ++round) {
        Child one(write);
        Child other(write);
        for (int opened = 0; opened < 40; ++opened) {
            ASSERT_EQ(one.next(), '.');
            ASSERT_EQ(other.next(), '.');
            committed += 2;
            const auto failure = Attempt([&] { m_engine.connect(); });
            ASSERT_FALSE(failure) << failure->what();
        }
        one.kill();
        other.kill();
        committed += static_cast<qint32>(one.rest().size() + other.rest().size());
        const Ref<ado::Connection> connection = m_engine.connect();
        const qint32 standing = openRecordset(connection, "tblAll")->RecordCount();
        // Each may have committed one more before it could say so.
        EXPECT_GE(standing, committed);
        EXPECT_LE(standing, committed + 2);
        committed = standing;
    }
    const Ref<ado::Connection> killed = m_engine.connect();
    add(killed, 0, 1);
    expectRefused(leave(old, log()));
}

TEST_F(LeftLog, WithoutItsFileIsLeftAlone) {
    const Ref<ado::Connection> killed = m_engine.connect();
    add(killed, 0, 5);
    const QByteArray frames = log();
    const QString path = leave({}, frames);
    ASSERT_TRUE(QFile::remove(path));
    expectFailure([&] { FileEngine::connectTo(path); }, failures::unspecified, {"is missing, but the log"});
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_EQ(contentOf(path + "-wal"), frames);
}

} // namespace

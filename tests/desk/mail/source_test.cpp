// Messages in files, folders, mailboxes and Maildirs.
#include "desk/mail/source.h"
#include "platform/value/pathbytes.h"
#include "print.h"
#include "support/child.h"
#include "support/files.h"
#include "support/steps.h"

#include <QBuffer>
#include <QDir>
#include <QTemporaryDir>

#include <filesystem>
#include <fstream>

#include <sys/stat.h>

using namespace desk;

namespace {

class Sources : public testing::Test {
  protected:
    QString write(const QString &name, const QByteArray &bytes) { return writtenFile(path(name), bytes); }
    QString path(const QString &name = {}) { return m_folder.filePath(name); }

    static QList<SourceMessage> readAll(const QString &path, qint64 limit = MessageSource::MaximumSize) {
        QList<SourceMessage> messages;
        const auto source = MessageSource::open(path, limit);
        SourceMessage message;
        while (source->next(message))
            messages += message;
        return messages;
    }

    static QList<QByteArray> bytesOf(const QString &path) {
        QList<QByteArray> bytes;
        for (const SourceMessage &message : readAll(path)) {
            EXPECT_EQ(message.error, "");
            bytes += message.bytes;
        }
        return bytes;
    }

  private:
    QTemporaryDir m_folder;
};

const QByteArray postmark = "From a@b.example Mon Nov 16 09:31:05 2026\n";

TEST_F(Sources, OneFile) {
    const QString file = write("a.txt", "Subject: x\r\n\r\nFrom here on\r\n");
    const QList<SourceMessage> messages = readAll(file);
    ASSERT_EQ(messages.size(), 1);
    EXPECT_EQ(messages[0].bytes, "Subject: x\r\n\r\nFrom here on\r\n");
    EXPECT_EQ(messages[0].name, file);
}

TEST_F(Sources, AnEmlFileIsOneMessageWhateverItBeginsWith) {
    const QByteArray bytes = postmark + "Subject: 1\n\n1\n\n" + postmark + "Subject: 2\n\n2\n";
    EXPECT_EQ(bytesOf(write("a.eml", bytes)), QList<QByteArray>{bytes});
}

TEST_F(Sources, AFolderWithThoseBelowItInTheOrderOfNames) {
    write("b.eml", "2");
    write("a.eml", "1");
    write("C.EML", "0");
    write("a/deeper/x.eml", "below");
    write("notes.txt", "no mail");
    QFile::link(path(), path("a/round"));
    EXPECT_EQ(bytesOf(path()), (QList<QByteArray>{"0", "1", "below", "2"}));
}

TEST_F(Sources, AMaildirWhateverItsFlags) {
    write("cur/1.x:2,S", "read");
    write("cur/2.x:2,", "seen");
    write("new/9.x", "new");
    write("tmp/3.x", "half written");
    EXPECT_EQ(bytesOf(path()), (QList<QByteArray>{"new", "read", "seen"}));
}

TEST_F(Sources, NothingThere) {
    EXPECT_EQ(failureOf([&] { MessageSource::open(path("none")); }), failures::fileNotFound);
    write("empty/notes.txt", "no mail");
    EXPECT_EQ(failureOf([&] { MessageSource::open(path("empty")); }), failures::fileNotFound);
}

/// Nobody writes to the pipe: whoever opened it would wait for ever.
TEST_F(Sources, WhatIsNoFileIsRefusedAndPassedOverInAFolder) {
    const auto pipe = [&](const QString &name) {
        EXPECT_EQ(::mkfifo(path(name).toUtf8().constData(), 0600), 0);
        return path(name);
    };
    for (const QString &special : {pipe("pipe"), pipe("pipe.eml"), QStringLiteral("/dev/zero")})
        EXPECT_EQ(failureOf([&] { MessageSource::open(special); }), failures::permissionDenied);
    for (const QString &folder : {QStringLiteral("folder"), QStringLiteral("maildir/new")}) {
        write(folder + "/a.eml", "first");
        write(folder + "/c.eml", "last");
        pipe(folder + "/b.eml");
        QFile::link("/nowhere", path(folder + "/gone.eml"));
    }
    QDir(path()).mkpath("maildir/cur");
    for (const QString &folder : {QStringLiteral("folder"), QStringLiteral("maildir")}) {
        const QList<SourceMessage> messages = readAll(path(folder));
        ASSERT_EQ(messages.size(), 3) << folder.toStdString();
        EXPECT_EQ(messages[0].bytes, "first");
        EXPECT_TRUE(messages[1].name.endsWith(u"b.eml"));
        EXPECT_TRUE(messages[1].error.contains(u"pipe"));
        EXPECT_EQ(messages[2].bytes, "last");
    }
}

/// Names from before UTF-8, as old mail folders have them.
TEST_F(Sources, FilesWhoseNamesAreNoText) {
    QDir(path()).mkpath("maildir/cur");
    QDir(path()).mkpath("maildir/new");
    const auto writeRaw = [&](const QByteArray &name, const QByteArray &bytes) {
        const QByteArray file = path().toUtf8() + '/' + name;
        std::ofstream(file.constData(), std::ios::binary) << bytes.toStdString();
        return pathFromBytes(file);
    };
    const QByteArray folder = path().toUtf8() + "/folder\xe9";
    ASSERT_EQ(::mkdir(folder.constData(), 0700), 0);
    const QString one = writeRaw("folder\xe9/Gr\374\337e.eml", "one");
    writeRaw("folder\xe9/\xf0\x9f\x98\x80\xff.EML", "two");
    writeRaw("maildir/cur/\xc3:2,S", "three");
    writeRaw("box\x80", postmark + "Subject: four\n\n4\n");
    EXPECT_EQ(bytesOfPath(one), folder + "/Gr\374\337e.eml");
    EXPECT_EQ(bytesOf(one), QList<QByteArray>{"one"});
    EXPECT_EQ(bytesOf(path()), (QList<QByteArray>{"one", "two"}));
    EXPECT_EQ(bytesOf(pathFromBytes(folder)), (QList<QByteArray>{"one", "two"}));
    EXPECT_EQ(bytesOf(path("maildir")), QList<QByteArray>{"three"});
    const QList<SourceMessage> boxed = readAll(pathFromBytes(path().toUtf8() + "/box\x80"));
    ASSERT_EQ(boxed.size(), 1);
    EXPECT_EQ(boxed[0].bytes, "Subject: four\n\n4\n");
    // The temporary folder can't remove what it can't name.
    std::filesystem::remove_all(path().toStdString());
}

TEST_F(Sources, AFolderThatMayNotBeReadIsNamedAmongTheOthers) {
    write("a.eml", "first");
    write("b/x.eml", "out of reach");
    write("c.eml", "last");
    ASSERT_EQ(::chmod(path().toUtf8().constData(), 0755), 0);
    ASSERT_EQ(::chmod(path("b").toUtf8().constData(), 0), 0);
    Child reader([&](int) {
        constexpr uid_t nobody = 65534;
        if (::geteuid() == 0 && ::setuid(nobody) != 0)
            return 2;
        const QList<SourceMessage> messages = readAll(path());
        return messages.size() == 3 && messages[0].bytes == "first" && messages[1].name == path("b") &&
                       messages[1].error.contains(u"can't be read") && messages[2].bytes == "last"
                   ? 0
                   : 1;
    });
    EXPECT_EQ(reader.wait(), 0);
    ASSERT_EQ(::chmod(path("b").toUtf8().constData(), 0700), 0);
}

TEST(PathBytes, AnyBytesComeBack) {
    for (const QByteArray &bytes : {QByteArray("plain"),
                                    QByteArray("Gr\xc3\xbc\xc3\x9f"
                                               "e \xf0\x9f\x98\x80"),
                                    QByteArray("Gr\374\337e"), QByteArray("\xc3"), QByteArray("\xed\xb2\x80"),
                                    QByteArray("\xf0\x9f\x98"), QByteArray("\xc0\x80\xff")})
        EXPECT_EQ(bytesOfPath(pathFromBytes(bytes)), bytes) << bytes.toHex().toStdString();
    EXPECT_EQ(pathFromBytes("Gr\xc3\xbc"), QStringLiteral("Grü"));
}

struct MboxCase {
    const char *name;
    QByteArray file;
    QList<QByteArray> messages;
};

class Mboxes : public Sources, public testing::WithParamInterface<MboxCase> {};

TEST_P(Mboxes, AreDivided) { EXPECT_EQ(bytesOf(write("mbox", GetParam().file)), GetParam().messages); }

// A body that only its length tells from the next message.
const QByteArray counted = "\n" + postmark + ">From x\n";
const QByteArray countedHeader = "Content-Length: " + QByteArray::number(counted.size()) + "\n\n";

const QByteArray second = postmark + "A: 2\n\n2\n";
const QByteArray sentence = "A: 1\n\none\n\nFrom here on we walk.\n";
const QByteArray hugeLength = "Content-Length: 9223372036854775807\n\n1\n";

const MboxCase mboxes[] = {
    {"Two", postmark + "A: 1\n\none\n\n" + second + "\n", {"A: 1\n\none\n", "A: 2\n\n2\n"}},
    {"CrLf",
     QByteArray(postmark + "A: 1\n\none\n\n" + second).replace("\n", "\r\n"),
     {"A: 1\r\n\r\none\r\n", "A: 2\r\n\r\n2\r\n"}},
    {"NoLastLineEnd", postmark + "A: 1\n\none", {"A: 1\n\none"}},
    {"QuotedOnce", postmark + "A: 1\n\n>From me\n>>From him\n> From\n", {"A: 1\n\nFrom me\n>From him\n> From\n"}},
    {"SentenceIsNoEnd", postmark + sentence, {sentence}},
    {"NoEmptyLineBeforeIsNoEnd", postmark + "A: 1\n\none\n" + postmark, {"A: 1\n\none\n" + postmark}},
    {"NoBody", postmark + "A: 1\n\n" + postmark + "A: 2\n\n", {"A: 1\n", "A: 2\n"}},
    {"ContentLength", postmark + countedHeader + counted + "\n" + second, {countedHeader + counted, "A: 2\n\n2\n"}},
    {"NoEmptyLineBehindIt", postmark + countedHeader + counted + second, {countedHeader + counted, "A: 2\n\n2\n"}},
    {"WrongContentLength",
     postmark + "Content-Length: 3\n\n12345\n\n" + second,
     {"Content-Length: 3\n\n12345\n", "A: 2\n\n2\n"}},
    {"HugeContentLength", postmark + hugeLength, {hugeLength}},
};
INSTANTIATE_TEST_SUITE_P(All, Mboxes, testing::ValuesIn(mboxes), nameOfCase);

TEST_F(Sources, LongLinesInAMbox) {
    const QByteArray longLine = QByteArray(200'000, 'x') + "\nFrom " + QByteArray(200'000, 'y') + "\n";
    EXPECT_EQ(bytesOf(write("mbox", postmark + "A: 1\n\n" + longLine)), QList<QByteArray>{"A: 1\n\n" + longLine});
}

/// A disk with a bad place.
class BadDevice : public QBuffer {
  public:
    BadDevice(const QByteArray &bytes, qint64 bad) : m_bad(bad) {
        setData(bytes);
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

  protected:
    qint64 readData(char *data, qint64 length) override {
        const qint64 left = m_bad - pos();
        setErrorString("Bad sector");
        return left > 0 ? QBuffer::readData(data, std::min(length, left)) : -1;
    }

  private:
    qint64 m_bad;
};

// What was read stays read, half a message is none, and nobody takes the bad place for the end of the mailbox.
TEST_F(Sources, AnMboxThatCantBeReadToItsEndSaysWhere) {
    const QByteArray first = postmark + "A: 1\n\n1\n\n";
    const QByteArray middle = postmark + countedHeader + counted + "\n";
    const QByteArray whole = first + middle + postmark + "A: 3\n\n3\n";
    const struct {
        qint64 bad;
        qsizetype read;
    } cases[] = {{0, 0},
                 {first.size() - 3, 0},
                 {first.size() + postmark.size() + 9, 1},
                 {first.size() + middle.size() - 5, 1},
                 {whole.size() - 1, 2}};
    for (const auto &[bad, read] : cases) {
        const auto source = MessageSource::ofMbox("box", std::make_unique<BadDevice>(whole, bad));
        QList<SourceMessage> messages;
        for (SourceMessage message; source->next(message);)
            messages += message;
        ASSERT_EQ(messages.size(), read + 1) << bad;
        for (qsizetype i = 0; i < read; ++i)
            EXPECT_EQ(messages[i].error, "") << bad;
        EXPECT_EQ(messages.last().name, QString("box#%1").arg(read + 1));
        EXPECT_EQ(messages.last().bytes, "");
        for (const QString &part : {QString("\"box\""), QString("byte %1 ").arg(bad), QString("Bad sector")})
            EXPECT_TRUE(messages.last().error.contains(part)) << messages.last().error.toStdString();
    }
    EXPECT_EQ(bytesOf(write("mbox", whole)).size(), 3);
}

// One that is too long, or gone, must not stop the others.
TEST_F(Sources, WhatCantBeReadIsSaidAndPassedOver) {
    const QByteArray big = "A: big\n\n" + QByteArray("line\n").repeated(100);
    const QList<SourceMessage> mbox =
        readAll(write("mbox", postmark + "A: 1\n\n\n" + postmark + big + "\n" + postmark + "A: 3\n\n"), 100);
    ASSERT_EQ(mbox.size(), 3);
    EXPECT_EQ(mbox[1].bytes, "");
    EXPECT_NE(mbox[1].error, "");
    EXPECT_TRUE(mbox[1].name.endsWith(u"mbox#2"));
    EXPECT_EQ(mbox[2].bytes, "A: 3\n");

    write("folder/a.eml", big);
    write("folder/b.eml", "small");
    write("folder/c.eml", "gone");
    const auto source = MessageSource::open(path("folder"), 100);
    QFile::remove(path("folder/c.eml"));
    SourceMessage message;
    ASSERT_TRUE(source->next(message));
    EXPECT_NE(message.error, "");
    ASSERT_TRUE(source->next(message));
    EXPECT_EQ(message.error, "");
    EXPECT_EQ(message.bytes, "small");
    ASSERT_TRUE(source->next(message));
    EXPECT_NE(message.error, "");
    EXPECT_FALSE(source->next(message));
}

} // namespace

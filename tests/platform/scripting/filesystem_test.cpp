#include "platform/scripting/filesystem.h"
#include "platform/scripting/path.h"
#include "support/files.h"
#include "support/steps.h"

#include <QRegularExpression>
#include <QTemporaryDir>

#include <csignal>

#include <sys/resource.h>

namespace {

/// A folder of its own, named by path texts with backslashes.
class Files : public testing::Test {
  protected:
    QString at(const QString &name) const { return scripting::pathText(folder.path()) + "\\" + name; }
    QByteArray bytes(const QString &name) const { return contentOf(folder.filePath(name)); }
    void put(const QString &name, const QByteArray &content) const { writtenFile(folder.filePath(name), content); }
    void write(const QString &name, const QString &text, bool unicode = false) const {
        writeText(at(name), text, unicode);
    }
    void writeText(const QString &path, const QString &text, bool unicode = false) const {
        const auto stream = fso.CreateTextFile(path, true, unicode);
        stream->Write(text);
        stream->Close();
    }
    QString read(const QString &name) const { return fso.OpenTextFile(at(name))->ReadAll(); }
    QStringList names() const { return QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot); }

    QTemporaryDir folder;
    scripting::FileSystemObject fso;
};

TEST_F(Files, TakeBothSeparatorsAndGiveBackslashes) {
    put("a.txt", "x");
    QDir(folder.path()).mkdir("sub");
    EXPECT_TRUE(fso.FileExists(at("a.txt")));
    EXPECT_TRUE(fso.FileExists(folder.filePath("a.txt")));
    EXPECT_FALSE(fso.FileExists(at("sub")));
    EXPECT_TRUE(fso.FolderExists(at("sub\\")));
    EXPECT_FALSE(fso.FolderExists(at("a.txt")));
    EXPECT_FALSE(fso.FileExists(""));
    EXPECT_FALSE(fso.FolderExists(""));
    const auto file = fso.GetFile(at("sub\\..\\a.txt"));
    EXPECT_EQ(file->Path(), at("a.txt"));
    EXPECT_EQ(file->Name(), "a.txt");
    EXPECT_EQ(file->ParentFolder()->Path(), scripting::pathText(folder.path()));
    const auto sub = fso.GetFolder(at("sub"));
    EXPECT_EQ(sub->Name(), "sub");
    EXPECT_EQ(sub->ParentFolder()->SubFolders().size(), 1);
    EXPECT_EQ(sub->ParentFolder()->SubFolders().first()->Path(), at("sub"));
    EXPECT_TRUE(fso.GetFolder("\\")->IsRootFolder());
    EXPECT_TRUE(fso.GetFolder("\\")->ParentFolder().isNothing());
}

TEST_F(Files, FailByNumber) {
    put("there.txt", "x");
    put("protected.txt", "x");
    QFile::setPermissions(folder.filePath("protected.txt"), QFile::ReadOwner);
    QDir(folder.path()).mkdir("sub");
    struct Case {
        const char *name;
        qint32 number;
        std::function<void()> step;
    };
    const std::vector<Case> cases = {
        {"get a missing file", 53, [&] { (void)fso.GetFile(at("none")); }},
        {"get a folder as a file", 53, [&] { (void)fso.GetFile(at("sub")); }},
        {"get a missing folder", 76, [&] { (void)fso.GetFolder(at("none")); }},
        {"open a missing file", 53, [&] { (void)fso.OpenTextFile(at("none")); }},
        {"open a missing file for writing", 53, [&] { (void)fso.OpenTextFile(at("none"), 2); }},
        {"open in a mode that is none", 5, [&] { (void)fso.OpenTextFile(at("there.txt"), 3); }},
        {"delete a missing file", 53, [&] { fso.DeleteFile(at("none"), true); }},
        {"delete in a missing folder", 53, [&] { fso.DeleteFile(at("none\\a"), true); }},
        {"delete a folder as a file", 53, [&] { fso.DeleteFile(at("sub"), true); }},
        {"delete a protected file", 70, [&] { fso.DeleteFile(at("protected.txt")); }},
        {"create over a file", 58, [&] { (void)fso.CreateTextFile(at("there.txt"), false); }},
        {"create over a folder", 70, [&] { (void)fso.CreateTextFile(at("sub")); }},
        {"create in a missing folder", 76, [&] { (void)fso.CreateTextFile(at("none\\a.txt")); }},
        {"create in a file", 76, [&] { (void)fso.CreateTextFile(at("there.txt\\a.txt")); }},
        {"read what is open for writing", 54, [&] { (void)fso.CreateTextFile(at("new.txt"))->ReadAll(); }},
        {"read an empty file", 62, [&] { (void)fso.OpenTextFile(at("empty.txt"), 1, true)->ReadAll(); }},
        {"write to a full disk", 61, [&] { writeText("\\dev\\full", "x"); }},
    };
    for (const Case &c : cases)
        EXPECT_EQ(failureOf(c.step), c.number) << c.name;
    EXPECT_EQ(bytes("there.txt"), "x");
    fso.DeleteFile(at("protected.txt"), true);
    EXPECT_FALSE(fso.FileExists(at("protected.txt")));
}

TEST_F(Files, AreReplacedAsAWholeOrNotAtAll) {
    put("settings", "1");
    const auto stream = fso.OpenTextFile(at("settings"), 2);
    stream->Write("23");
    EXPECT_EQ(bytes("settings"), "1");
    stream->Close();
    EXPECT_EQ(bytes("settings"), "23");

    // A disk that fills up in the middle of the new content.
    const QString large(100000, u'x');
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, SIG_IGN);
    const rlimit small{.rlim_cur = 50000, .rlim_max = before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const qint32 number = failureOf([&] { write("settings", large); });
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(number, failures::diskFull);
    EXPECT_EQ(bytes("settings"), "23");
    EXPECT_EQ(names(), QStringList{"settings"});
}

TEST_F(Files, KeepTheirPermissionsAndTheirLinks) {
    put("target", "1");
    const auto permissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
    QFile::setPermissions(folder.filePath("target"), permissions);
    QFile::link(folder.filePath("target"), folder.filePath("link"));
    write("link", "2");
    EXPECT_EQ(bytes("target"), "2");
    EXPECT_TRUE(QFileInfo(folder.filePath("link")).isSymLink());
    EXPECT_TRUE(QFile::permissions(folder.filePath("target")).testFlag(QFile::ReadGroup));
    EXPECT_FALSE(QFile::permissions(folder.filePath("target")).testFlag(QFile::ReadOther));
}

TEST_F(Files, AreReadAndWrittenInTheirEncodings) {
    struct Case {
        const char *name;
        QString text;
        QByteArray written;
    };
    const std::vector<Case> cases = {
        {"ASCII", "plain \"text\"\r\n", "plain \"text\"\r\n"},
        {"Windows-1252", QString("Größe – 5 €"), "Gr\xF6\xDF\x65 \x96 5 \x80"},
        {"another alphabet", QString("Πρόβλημα"), "\xEF\xBB\xBF" + QString("Πρόβλημα").toUtf8()},
        {"bytes that could be UTF-8", QString("Ã¤"), "\xEF\xBB\xBF" + QString("Ã¤").toUtf8()},
        {"beyond 16 bits", QString("🖨"), "\xEF\xBB\xBF" + QString("🖨").toUtf8()},
        {"a control of the upper half", QString(QChar(0x85)), QByteArray("\xEF\xBB\xBF\xC2\x85")},
        {"a place without a character", QString(QChar(0x81)), QByteArray("\x81")},
    };
    for (const Case &c : cases) {
        write("a.txt", c.text);
        EXPECT_EQ(bytes("a.txt"), c.written) << c.name;
        EXPECT_EQ(read("a.txt"), c.text) << c.name;
        write("a.txt", c.text, true);
        EXPECT_TRUE(bytes("a.txt").startsWith("\xFF\xFE")) << c.name;
        EXPECT_EQ(read("a.txt"), c.text) << c.name;
    }
    put("editor.txt", QString("Lösung").toUtf8());
    EXPECT_EQ(read("editor.txt"), QString("Lösung"));
}

TEST_F(Files, AreWrittenByTheLastReferenceToo) {
    fso.CreateTextFile(at("a.txt"))->Write("kept");
    EXPECT_EQ(bytes("a.txt"), "kept");
}

TEST_F(Files, HaveATempFolderAndNamesForIt) {
    EXPECT_EQ(fso.GetSpecialFolder(2)->Path(), scripting::pathText(QDir::tempPath()));
    EXPECT_EQ(failureOf([&] { (void)fso.GetSpecialFolder(0); }), failures::invalidCall);
    EXPECT_TRUE(QRegularExpression("^rad[0-9A-F]{5}\\.tmp$").match(fso.GetTempName()).hasMatch());
}

} // namespace

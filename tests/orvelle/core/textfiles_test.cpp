#include "orvelle/core/components.h"
#include "orvelle/core/textfiles.h"
#include "platform/scripting/filesystem.h"

#include "support/environment.h"
#include "support/program.h"

namespace {

/// The temp folder is a folder of the test.
class TextFiles : public support::Program {
  protected:
    TextFiles() { QDir(m_folder.path()).mkdir("temp"); }

    const support::EnvironmentValue m_temp{"TMPDIR", path("temp").toLocal8Bit()};
};

TEST_F(TextFiles, AreWrittenWithoutTheirDoubleQuotes) {
    QString file = at("a.htm");
    put("a.htm", "old and longer than the new text");
    EXPECT_EQ(fncSaveTextFile(file, "<a href=\"x\">Größe</a>", false), at("a.htm"));
    EXPECT_EQ(bytes("a.htm"), "<a href=x>Gr\xF6\xDF\x65</a>");
}

TEST_F(TextFiles, GoToTheTempFolderOnRetryOrWithoutAName) {
    QString file = "a.ndf";
    EXPECT_EQ(fncSaveTextFile(file, "x", true), at("temp\\a.ndf"));
    EXPECT_EQ(file, at("temp\\a.ndf"));
    EXPECT_EQ(bytes("temp/a.ndf"), "x");
    QString none;
    const QString name = fncSaveTextFile(none, "y", false);
    EXPECT_TRUE(name.startsWith(at("temp\\rad")) && name.endsWith(".ndf")) << name.toStdString();
    EXPECT_EQ(bytes(scripting::nativePath(name).mid(m_folder.path().size() + 1)), "y");
}

/// A file system on which some files can't be deleted.
struct Stubborn : scripting::FileSystemObject {
    void DeleteFile(const QString &path, bool force) const override {
        if (kept.contains(path.section(u'\\', -1)))
            throw Failure(failures::permissionDenied);
        FileSystemObject::DeleteFile(path, force);
    }
    QStringList kept;
};

TEST_F(TextFiles, TakeTheNextNameWhereTheOldFileStays) {
    struct Case {
        QStringList there;
        QStringList kept;
        QString name;
    };
    const std::vector<Case> cases = {
        {{"a.ndf"}, {}, "a.ndf"},
        {{"a.ndf"}, {"a.ndf"}, "a1.ndf"},
        {{"a.ndf", "a1.ndf"}, {"a.ndf"}, "a1.ndf"},
        {{"a.ndf", "a1.ndf"}, {"a.ndf", "a1.ndf"}, "a12.ndf"},
        {{"a.ndf", "a1.ndf", "a12.ndf"}, {"a.ndf", "a1.ndf", "a12.ndf"}, "a123.ndf"},
    };
    for (const Case &c : cases) {
        const auto stubborn = Ref<Stubborn>::make();
        stubborn->kept = c.kept;
        fsoFileSystem = stubborn;
        for (const QString &name : c.there)
            put("temp/" + name, "old");
        QString file = "a.ndf";
        EXPECT_EQ(fncSaveTextFile(file, "new", true), at("temp\\" + c.name));
        EXPECT_EQ(bytes("temp/" + c.name), "new");
        for (const QString &name : c.kept)
            EXPECT_EQ(bytes("temp/" + name), "old");
        for (const QString &name : c.there + QStringList{c.name})
            QFile::remove(path("temp/" + name));
    }
}

TEST_F(TextFiles, ThatCannotBeReplacedAreReportedWithoutRetry) {
    const auto stubborn = Ref<Stubborn>::make();
    stubborn->kept = QStringList{"a.htm"};
    fsoFileSystem = stubborn;
    put("a.htm", "old");
    answers.expect("Sub routine : fncSaveTextFile ", window::No);
    QString file = at("a.htm");
    EXPECT_TRUE(support::endsProcess([&] { fncSaveTextFile(file, "new", false); }));
    EXPECT_EQ(bytes("a.htm"), "old");
}

TEST_F(TextFiles, PathsAreCutAsTexts) {
    const std::vector<std::pair<QString, QString>> cases = {{"a\\", "a"}, {"a/", "a"}, {"a\\\\", "a\\"},
                                                            {"a", "a"},   {"", ""},    {"\\", ""}};
    for (const auto &[path, cut] : cases)
        EXPECT_EQ(fncNoTrailingSlash(path), cut) << path.toStdString();
}

} // namespace

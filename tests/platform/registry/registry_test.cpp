#include "platform/registry/registry.h"
#include "support/child.h"
#include "support/files.h"
#include "support/steps.h"

#include <QTemporaryDir>

#include <list>

namespace {

class Registry : public testing::Test {
  protected:
    void SetUp() override { registry::fileOverride = path; }
    void TearDown() override { registry::fileOverride = QString(); }
    QStringList damaged() const { return QDir(folder.path()).entryList({"registry.ini.damaged-*"}); }

    QTemporaryDir folder;
    QString path = folder.filePath("registry.ini");
};

TEST_F(Registry, KeepsAnyText) {
    registry::remove("HKCU\\X");
    EXPECT_EQ(registry::read("HKCU\\X"), std::nullopt);
    EXPECT_FALSE(QFile::exists(path)) << "reading makes no file";
    const QStringList texts = {"",
                               "1",
                               "a=b",
                               "100%",
                               "two\r\nlines\tand a tab",
                               QString("Ärenden Πρόβλημα 🖨"),
                               "end 3",
                               QString(QChar(u'\0')) + "after",
                               "  blanks  "};
    for (qsizetype i = 0; i < texts.size(); ++i)
        registry::write(QString("HKCU\\Software\\A=B\\Value %1").arg(i), texts.at(i));
    for (qsizetype i = 0; i < texts.size(); ++i)
        EXPECT_EQ(registry::read(QString("hkey_current_user\\software\\a=b\\VALUE %1").arg(i)), texts.at(i));
    EXPECT_EQ(registry::read("HKCU\\Software\\A=B"), std::nullopt);
    registry::remove("HKCU\\Software\\A=B\\value 1");
    EXPECT_EQ(registry::read("HKCU\\Software\\A=B\\Value 1"), std::nullopt);
    EXPECT_EQ(registry::read("HKCU\\Software\\A=B\\Value 2"), "a=b");
}

TEST_F(Registry, TakesTurnsAmongProcesses) {
    constexpr int processes = 4;
    constexpr int values = 10;
    std::list<Child> writers;
    for (int process = 0; process < processes; ++process)
        writers.emplace_back([process](int) {
            return failureOf([process] {
                for (int i = 0; i < values; ++i)
                    registry::write(QString("HKCU\\Process %1\\%2").arg(process).arg(i), QString::number(i));
            });
        });
    for (Child &writer : writers)
        EXPECT_EQ(writer.wait(), 0);
    for (int process = 0; process < processes; ++process) {
        for (int i = 0; i < values; ++i)
            EXPECT_EQ(registry::read(QString("HKCU\\Process %1\\%2").arg(process).arg(i)), QString::number(i));
    }
}

TEST_F(Registry, KeepsADamagedFileAsideAndSaysSo) {
    registry::write("HKCU\\A", "1");
    registry::write("HKCU\\B", "2");
    const QByteArray whole = contentOf(path);
    const std::vector<std::pair<const char *, QByteArray>> cases = {
        {"empty", ""},
        {"cut", whole.left(whole.size() - 3)},
        {"a line lost", QByteArray(whole).replace("HKCU\\A=1\n", "")},
        {"no sign", QByteArray(whole).replace("A=1", "A 1")},
        {"broken escape", QByteArray(whole).replace("A=1", "A=%zz")},
        {"no text", QByteArray(whole).replace("A=1", "A=\xFF\xFE")},
        {"another file", "[Section]\nkey=value\n"},
    };
    qsizetype kept = 0;
    for (const auto &[name, content] : cases) {
        writtenFile(path, content);
        testing::internal::CaptureStderr();
        EXPECT_EQ(registry::read("HKCU\\B"), std::nullopt) << name;
        EXPECT_NE(testing::internal::GetCapturedStderr().find("is damaged"), std::string::npos) << name;
        ++kept;
        ASSERT_EQ(damaged().size(), kept) << name;
        EXPECT_EQ(contentOf(folder.filePath(QString("registry.ini.damaged-%1").arg(kept))), content) << name;
        registry::write("HKCU\\B", "3");
        EXPECT_EQ(registry::read("HKCU\\B"), "3") << name;
    }
}

TEST_F(Registry, FailsByNumberWhereItCannotWrite) {
    registry::fileOverride = QString("/proc/orvelle/registry.ini");
    EXPECT_EQ(failureOf([] { registry::write("HKCU\\A", "1"); }), failures::pathNotFound);
}

} // namespace

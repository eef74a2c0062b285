// The settings object by itself: the language file beside the home page.

#include "support/session.h"

namespace {

class SettingsTest : public support::Session {
  protected:
    [[nodiscard]] QString languageFile() const { return path("OrvelleSettings"); }
    void writeLanguage(const QByteArray &content) const { writtenFile(languageFile(), content); }
    [[nodiscard]] QByteArray language() const { return contentOf(languageFile()); }
};

TEST_F(SettingsTest, TheLanguageIsTheFilesAndOtherwiseTheFirst) {
    const std::pair<const char *, qint16> contents[] = {{"7", 7}, {"  12 ", 12}, {"", 1}, {"   ", 1}};
    for (const auto &[content, number] : contents) {
        writeLanguage(content);
        EXPECT_EQ(objSettings->fncReadLanguage(), number) << content;
        EXPECT_EQ(objSettings->CurrentSelectedLanguage, number);
    }
    QFile::remove(languageFile());
    objSettings->CurrentSelectedLanguage = 4;
    EXPECT_EQ(objSettings->fncReadLanguage(), 1);
    EXPECT_EQ(language(), "1") << "the first read makes the file";

    QFile::remove(languageFile());
    QDir().mkdir(languageFile());
    EXPECT_EQ(objSettings->fncReadLanguage(), 1);
    objSettings->fncSetSettingFile(languageFile(), 3);
    EXPECT_TRUE(QFileInfo(languageFile()).isDir()) << "what can't be used is left";

    QDir().rmdir(languageFile());
    oufTickets = nullptr;
    EXPECT_EQ(objSettings->fncReadLanguage(), 1);
    EXPECT_FALSE(QFile::exists(languageFile())) << "without a ticket folder there is no place for it";
}

TEST_F(SettingsTest, FindsTheFolderOfTheHomePage) {
    const std::pair<const char *, const char *> cases[] = {
        {"file://C:\\Data\\page.htm", "C:\\Data\\"},
        {"file:C:\\Data\\page.htm", "C:\\Data\\"},
        {"file:///srv/help desk/Orvelle.htm", "/srv/help desk/"},
        {"file:C:\\x/y.htm", "C:\\x/"},
        {"page.htm", "page.htm"},
        {"", ""},
    };
    for (const auto &[url, folder] : cases) {
        tickets().WebViewURL(url);
        EXPECT_EQ(objSettings->fncGetFilePath(), folder) << url;
    }
}

} // namespace

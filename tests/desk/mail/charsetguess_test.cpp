// Mail whose texts do not say their character set, or say it wrongly, as programs of all ages send it.
#include "desk/mail/parser.h"
#include "print.h"

#include <gtest/gtest.h>

#include <iconv.h>

using namespace desk;

namespace {

/// Fails where the set can't hold the text.
QByteArray encoded(const QString &text, const char *charset) {
    const iconv_t converter = iconv_open(charset, "UTF-8");
    QByteArray utf8 = text.toUtf8();
    QByteArray bytes(utf8.size() * 4 + 16, Qt::Uninitialized);
    char *input = utf8.data();
    char *output = bytes.data();
    auto left = static_cast<std::size_t>(utf8.size());
    auto room = static_cast<std::size_t>(bytes.size());
    EXPECT_EQ(iconv(converter, &input, &left, &output, &room), 0U) << charset;
    iconv(converter, nullptr, nullptr, &output, &room);
    iconv_close(converter);
    bytes.truncate(bytes.size() - static_cast<qsizetype>(room));
    return bytes;
}

struct Case {
    const char *name;
    const char *charset;
    const char *language;
    QString title;
    QString text;
    /// Whether a title alone, with nothing said about it anywhere, is enough.
    bool standsAlone = true;
};

const QString russianTitle = "Принтер не работает";
const QString russian = "Добрый день! У нас на третьем этаже не работает принтер. Пожалуйста, пришлите кого-нибудь "
                        "посмотреть. Спасибо, с уважением, Иван Петров.";
const QString japaneseTitle = "プリンタが動きません";
const QString japanese =
    "お世話になっております。三階のプリンタが動きません。ご確認をお願いいたします。よろしくお願いします。";
const QString chineseTitle = "打印机坏了";
const QString chinese = "您好，三楼的打印机不能用了，请派人来看一下。非常感谢您的帮助。";
const QString taiwaneseTitle = "印表機壞了";
const QString taiwanese = "您好，三樓的印表機無法使用，請派人來看一下。非常感謝您的幫助。";
const QString koreanTitle = "프린터가 안 됩니다";
const QString korean = "안녕하세요. 3층 프린터가 작동하지 않습니다. 확인 부탁드립니다. 감사합니다.";
const QString czechTitle = "Tiskárna stále nefunguje a nikdo nepřišel";
const QString czech =
    "Dobrý den, tiskárna ve třetím patře nefunguje. Prosím, pošlete někoho, kdo se na to podívá. Děkuji, "
    "s pozdravem Jiří Dvořák";
const QString polishTitle = "Drukarka nie działa";
const QString polish =
    "Dzień dobry, drukarka na trzecim piętrze nie działa. Proszę o sprawdzenie. Dziękuję i pozdrawiam, "
    "Łukasz Wójcik";
const QString greekTitle = "Ο εκτυπωτής δεν λειτουργεί";
const QString greek = "Καλημέρα σας, ο εκτυπωτής στον τρίτο όροφο δεν λειτουργεί. Παρακαλώ στείλτε κάποιον να τον δει. "
                      "Ευχαριστώ πολύ.";
const QString turkishTitle = "Yazıcı çalışmıyor";
const QString turkish =
    "Merhaba, üçüncü kattaki yazıcı çalışmıyor. Lütfen birini gönderin, şimdiden teşekkür ederim. İyi "
    "günler.";
const QString germanTitle = "Drucker für Müllers Büro gestört";
const QString german =
    "Guten Tag, der Drucker im dritten Stock für unser Büro ist gestört; er zeigt „Störung“ an. Können "
    "Sie bitte jemanden schicken? Schöne Grüße – Jürgen Müller";
const QString frenchTitle = "Imprimante à réparer s’il vous plaît";
const QString french = "Bonjour, l’imprimante du troisième étage est en panne. Pourriez-vous envoyer quelqu’un ? Très "
                       "cordialement, Hélène Lefèvre";
const QString hebrewTitle = "המדפסת לא עובדת";
const QString hebrew = "שלום, המדפסת בקומה השלישית לא עובדת. אנא שלחו מישהו לבדוק. תודה רבה";

const Case cases[] = {
    {"ShiftJis", "SHIFT_JIS", "ja", japaneseTitle, japanese},
    {"EucJp", "EUC-JP", "ja", japaneseTitle, japanese},
    {"Iso2022Jp", "ISO-2022-JP", "ja", japaneseTitle, japanese},
    {"EucKr", "EUC-KR", "ko", koreanTitle, korean},
    {"Gb18030", "GB18030", "zh-CN", chineseTitle, chinese},
    {"Big5", "BIG5", "zh-TW", taiwaneseTitle, taiwanese},
    {"Koi8R", "KOI8-R", "ru", russianTitle, russian},
    {"Windows1251", "WINDOWS-1251", "ru-RU", russianTitle, russian},
    {"Latin2Czech", "ISO-8859-2", "cs", czechTitle, czech},
    {"Latin2Polish", "ISO-8859-2", "pl", polishTitle, polish},
    {"Windows1250Czech", "WINDOWS-1250", "cs", czechTitle, czech, false},
    {"Greek", "ISO-8859-7", "el", greekTitle, greek},
    {"Turkish", "ISO-8859-9", "tr", turkishTitle, turkish},
    {"German", "WINDOWS-1252", "de", germanTitle, german},
    {"French", "WINDOWS-1252", "fr", frenchTitle, french},
    {"Hebrew", "WINDOWS-1255", "he", hebrewTitle, hebrew},
};

class CharsetGuess : public testing::TestWithParam<Case> {
  protected:
    const QByteArray m_title = encoded(GetParam().title, GetParam().charset);
    const QByteArray m_text = encoded(GetParam().text, GetParam().charset);
    const bool m_isSevenBit = QByteArray(GetParam().charset) == "ISO-2022-JP";
};

// The whole message is in one set, and nothing or something impossible is said about it.
TEST_P(CharsetGuess, ReadsUnmarkedMessages) {
    for (const char *type :
         {"", "Content-Type: text/plain\r\n", "Content-Type: text/plain; charset=us-ascii\r\n",
          "Content-Type: text/plain; charset=utf-8\r\n", "Content-Type: text/plain; charset=x-none\r\n"}) {
        if (m_isSevenBit && QByteArray(type).contains("utf-8"))
            continue; // ASCII is valid UTF-8
        const Message message =
            parseMessage("Subject: " + m_title + "\r\nFrom: " + m_title + " <a@b>\r\n" + type + "\r\n" + m_text);
        EXPECT_EQ(message.subject, GetParam().title) << type;
        EXPECT_EQ(message.from.name, GetParam().title) << type;
        EXPECT_EQ(message.text, GetParam().text) << type;
    }
}

TEST_P(CharsetGuess, ReadsATextWithNothingBesideIt) {
    EXPECT_EQ(parseMessage("X: y\r\n\r\n" + m_text).text, GetParam().text);
}

TEST_P(CharsetGuess, ReadsShortTextsByTheMessagesLanguage) {
    const QByteArray language = GetParam().language;
    const QByteArray page = "Content-Type: text/html\r\n\r\n<html lang=\"" + language + "\"><p>Hello</p>";
    EXPECT_EQ(parseMessage("Subject: " + m_title + "\r\nContent-Language: " + language + "\r\n\r\nHello").subject,
              GetParam().title);
    EXPECT_EQ(parseMessage("Subject: " + m_title + "\r\n" + page).subject, GetParam().title);
    // A text that could be read shows the language, too.
    EXPECT_EQ(parseMessage("Subject: " + m_title + "\r\nContent-Type: text/plain; charset=utf-8\r\n\r\n" +
                           GetParam().text.toUtf8())
                  .subject,
              GetParam().title);
}

TEST_P(CharsetGuess, ReadsShortTextsByThemselves) {
    if (!GetParam().standsAlone)
        GTEST_SKIP() << "makes as good a text in another set";
    EXPECT_EQ(parseMessage("Subject: " + m_title + "\r\n\r\nHello").subject, GetParam().title);
    EXPECT_EQ(parseMessage("Subject: x\r\n\r\n" + m_title).text, GetParam().title);
}

TEST_P(CharsetGuess, ReadsNamesOfFiles) {
    if (m_isSevenBit || m_title.contains('\\') || m_title.contains('"'))
        GTEST_SKIP() << "a quoted name can't hold these bytes";
    const Message message = parseMessage("Content-Type: multipart/mixed; boundary=b\r\n\r\n--b\r\n\r\n" + m_text +
                                         "\r\n--b\r\nContent-Type: image/png\r\nContent-Disposition: attachment; "
                                         "filename=\"" +
                                         m_title + ".png\"\r\n\r\nx\r\n--b--\r\n");
    ASSERT_EQ(message.attachments.size(), 1);
    EXPECT_EQ(message.attachments.first().name, GetParam().title + ".png");
}

// What is marked rightly is never guessed, whatever the rest of the message looks like.
TEST_P(CharsetGuess, LeavesMarkedTextsAlone) {
    const QByteArray word = "=?" + QByteArray(GetParam().charset) + "?B?" + m_title.toBase64() + "?=";
    const QByteArray type = "Content-Type: text/plain; charset=" + QByteArray(GetParam().charset);
    for (const QByteArray &other : {QByteArray("ru"), QByteArray("ja"), QByteArray("de")}) {
        const QByteArray header =
            "Content-Language: " + other + "\r\nX-Other: \xCF\xF0\xE8\xE2\xE5\xF2 \xEC\xE8\xF0\r\n";
        const Message message = parseMessage("Subject: " + word + "\r\n" + header + type + "\r\n\r\n" + m_text);
        EXPECT_EQ(message.subject, GetParam().title);
        EXPECT_EQ(message.text, GetParam().text);
        EXPECT_EQ(parseMessage(header + type + "\r\n\r\n" + m_title).text, GetParam().title);
    }
}

// The first character alone is little to go by, and must not be taken for anything else than what the mark says.
TEST_P(CharsetGuess, LeavesMarkedCharactersAlone) {
    for (const QChar c : GetParam().text) {
        const QByteArray bytes = encoded(QString(c), GetParam().charset);
        const QByteArray type = "Content-Type: text/plain; charset=" + QByteArray(GetParam().charset);
        if (!c.isSpace()) {
            EXPECT_EQ(parseMessage(type + "\r\n\r\n" + bytes).text, QString(c));
        }
    }
}

TEST_P(CharsetGuess, Utf8AlwaysWins) {
    const QByteArray language = "Content-Language: " + QByteArray(GetParam().language) + "\r\n";
    const QByteArray page = "Content-Type: text/html\r\n\r\n<meta charset=" + QByteArray(GetParam().charset) + ">";
    EXPECT_EQ(parseMessage("Subject: " + GetParam().title.toUtf8() + "\r\n" + language + "\r\n" + m_text).subject,
              GetParam().title);
    EXPECT_TRUE(parseMessage(language + page + GetParam().text.toUtf8()).html.endsWith(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(All, CharsetGuess, testing::ValuesIn(cases), nameOfCase);

struct LatinCase {
    const char *name;
    QString text;
};

/// Texts with a few signs and accents, which other sets would turn into words of theirs.
class FewCharacters : public testing::TestWithParam<LatinCase> {};

TEST_P(FewCharacters, AreWindows1252) {
    EXPECT_EQ(parseMessage("Subject: " + encoded(GetParam().text, "WINDOWS-1252") + "\r\n\r\n").subject,
              GetParam().text);
}

const LatinCase latin[] = {
    {"Name", "Müller"},
    {"Word", "café"},
    {"Capitals", "ÄRGER IM BÜRO"},
    {"Degrees", "Raum 20°C, Flur 30°C"},
    {"Price", "Preis: 20 €, § 5, ½ Tag, 3×4 m²"},
    {"Quotes", "“x” – ‘y’…"},
    {"Norwegian", "Skriveren på Åsane virker ikke, hjelp ønskes"},
    {"Spanish", "¿Impresora dañada en el baño?"},
    {"Portuguese", "Impressora não está a funcionar, atenção"},
    {"French", "Problème à l'école"},
    {"Finnish", "Tulostin ei toimi, pyydän apua: Ääkköset näkyvät väärin"},
};
INSTANTIATE_TEST_SUITE_P(All, FewCharacters, testing::ValuesIn(latin), nameOfCase);

// UTF-7 hides markup in ASCII: it is read where the sender marks it, and nowhere else.
TEST(Utf7, IsReadOnlyWhereItIsMarked) {
    const QByteArray hidden = "+ADw-script+AD4-alert(1)+ADw-/script+AD4- Fr+APY-sche";
    const auto read = [&](const QByteArray &type) {
        return parseMessage("Content-Type: " + type + "\r\n\r\n" + hidden);
    };
    EXPECT_EQ(read("text/plain; charset=utf-7").text, "<script>alert(1)</script> Frösche");
    EXPECT_EQ(read("text/plain; charset=unicode-1-1-utf-7").text, "<script>alert(1)</script> Frösche");
    EXPECT_EQ(parseMessage("Subject: =?utf-7?Q?Fr+APY-sche?=\r\n\r\n").subject, "Frösche");
    for (const char *type : {"text/plain", "text/plain; charset=us-ascii", "text/plain; charset=x-none"})
        EXPECT_EQ(read(type).text, QString(hidden)) << type;
    EXPECT_EQ(read("text/html").html, QString(hidden));
    for (const char *bytes : {"", "\xE4"}) {
        const QByteArray page = "<meta charset=\"utf-7\">" + hidden + bytes;
        EXPECT_FALSE(parseMessage("Content-Type: text/html\r\n\r\n" + page).html.contains("<script>"));
        EXPECT_FALSE(parseMessage("Content-Type: multipart/mixed; boundary=b\r\n\r\n--b\r\nContent-Type: text/plain; "
                                  "charset=utf-7\r\n\r\nx\r\n--b\r\nContent-Type: text/html\r\n\r\n" +
                                  page + "\r\n--b--\r\n")
                         .html.contains("<script>"));
    }
    EXPECT_EQ(parseMessage("Content-Type: text/plain; charset=utf-7\r\n\r\n1 + 1 = 2, C++").text, "1 + 1 = 2, C++");
}

// A text that was cut, or has a bad byte, is still in the set that its sender named.
TEST(MarkedTexts, SurviveSomeDamage) {
    const QByteArray type = "Content-Type: text/plain; charset=";
    const QByteArray utf8 = QString("Grüße aus dem Büro, schöne Wörter für Müller").toUtf8();
    EXPECT_EQ(parseMessage(type + "utf-8\r\n\r\n" + utf8 + "\xFF").text,
              "Grüße aus dem Büro, schöne Wörter für Müllerÿ");
    EXPECT_EQ(parseMessage(type + "utf-8\r\n\r\n\xD0\xBF\xD1").text, QString("пÑ"));
    const QByteArray japaneseBytes = encoded(japanese, "SHIFT_JIS");
    EXPECT_TRUE(
        parseMessage(type + "shift_jis\r\n\r\n" + japaneseBytes.chopped(1)).text.startsWith(japanese.chopped(1)));
    EXPECT_TRUE(parseMessage(type + "shift_jis\r\n\r\n" + japaneseBytes + "\xFF\xFF").text.startsWith(japanese));
}

} // namespace

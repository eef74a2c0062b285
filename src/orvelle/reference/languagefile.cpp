// The language number lives in a small text file beside the home page of the ticket folder, so that all who share the
// folder share it. A file that can't be read counts as the first language; one that can't be written stays as it is.

#include "orvelle/reference/settings.h"

#include "orvelle/core/components.h"
#include "orvelle/core/process.h"
#include "orvelle/reference/texts.h"
#include "platform/scripting/filesystem.h"

namespace {
constexpr auto languageFileName = "OrvelleSettings";
constexpr int forReading = 1;
constexpr int forWriting = 2;
constexpr int ansi = 0;

QString fncWithout(QString strText, const QString &strPiece) {
    return strPiece.isEmpty() ? strText : strText.remove(strPiece);
}
} // namespace

Ref<scripting::TextStream> cSettings::fncGetSettingFile(const QString &strFilePath) {
    Ref<scripting::TextStream> stream;
    Attempt([&] {
        subSetupFS();
        if (fsoFileSystem->FileExists(strFilePath)) {
            stream = fsoFileSystem->OpenTextFile(strFilePath, forReading, true, ansi);
            return;
        }
        stream = fsoFileSystem->CreateTextFile(strFilePath, true, false);
        stream->Write("1");
        CurrentSelectedLanguage = 1;
    });
    return stream;
}

void cSettings::fncSetSettingFile(const QString &strLanguageFilePath, qint16 lngIndex) {
    Attempt([&] {
        subSetupFS();
        const auto stream = fsoFileSystem->OpenTextFile(strLanguageFilePath, forWriting, true, ansi);
        stream->Write(QString::number(lngIndex));
        stream->Close();
    });
}

QString cSettings::fncGetlanguage() {
    QString path;
    if (Attempt([&] { path = fncGetFilePath() + languageFileName; }))
        return {};
    m_strLanguageFile = path;
    return AttemptOr([&] { return fncTrim(fncGetSettingFile(path)->ReadAll()); }, QString());
}

qint16 cSettings::fncReadLanguage() {
    const QString text = fncGetlanguage();
    if (text.isEmpty()) {
        CurrentSelectedLanguage = 1;
    } else if (const auto failure = Attempt([&] { CurrentSelectedLanguage = toInt16(text); })) {
        throw Failure(failure->number(),
                      QString("%1. The language file %2 holds \"%3\" instead of a language's number. "
                              "Write the number into it, or delete it for the first language.")
                          .arg(failure->description(), m_strLanguageFile, text.left(50)));
    }
    return CurrentSelectedLanguage;
}

QString cSettings::fncGetFilePath() const {
    const QString path = fncWithout(fncWithout(oufTickets->WebViewURL(), "file://"), "file:");
    return fncWithout(path, fncGetFileName(path));
}

QString cSettings::fncGetFileName(const QString &strLocation) const {
    const qsizetype separator = std::max(strLocation.lastIndexOf(u'\\'), strLocation.lastIndexOf(u'/'));
    return separator < 0 ? QString() : strLocation.mid(separator + 1);
}

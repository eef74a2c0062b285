// The encodings of text files.

#include "platform/scripting/textstream.h"

#include <QStringDecoder>
#include <QStringEncoder>

#include <array>

namespace scripting {

namespace {

/// Windows-1252 from 0x80 to 0x9F; the five places without a character stand for themselves.
constexpr std::array<char16_t, 32> upperControls = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

const QByteArray utf8Mark = "\xEF\xBB\xBF";
const QByteArray utf16Mark = "\xFF\xFE";

QString fromAnsi(const QByteArray &bytes) {
    QString text = QString::fromLatin1(bytes);
    for (QChar &character : text) {
        if (character >= QChar(0x80) && character < QChar(0xA0))
            character = QChar(upperControls[character.unicode() - 0x80U]);
    }
    return text;
}

std::optional<QByteArray> toAnsi(const QString &text) {
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const QChar character : text) {
        const char16_t code = character.unicode();
        if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) {
            bytes.append(static_cast<char>(code));
            continue;
        }
        const auto *place = std::find(upperControls.begin(), upperControls.end(), code);
        if (place == upperControls.end())
            return std::nullopt;
        bytes.append(static_cast<char>(0x80 + (place - upperControls.begin())));
    }
    return bytes;
}

bool isAscii(const QByteArray &bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

std::optional<QString> fromUtf8(const QByteArray &bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(text);
}

} // namespace

QString decodeText(const QByteArray &bytes) {
    if (bytes.startsWith(utf8Mark))
        return QString::fromUtf8(bytes.mid(utf8Mark.size()));
    if (bytes.startsWith(utf16Mark)) {
        QStringDecoder decoder(QStringDecoder::Utf16LE, QStringDecoder::Flag::Stateless);
        return decoder(bytes.mid(utf16Mark.size()));
    }
    if (isAscii(bytes))
        return QString::fromLatin1(bytes);
    if (const std::optional<QString> text = fromUtf8(bytes))
        return *text;
    return fromAnsi(bytes);
}

QByteArray encodeText(const QString &text, bool unicode) {
    if (unicode) {
        QStringEncoder encoder(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom);
        return encoder(text);
    }
    const std::optional<QByteArray> ansi = toAnsi(text);
    // Reading has to find the same text, so bytes that could be read otherwise don't go out.
    if (ansi && decodeText(*ansi) == text)
        return *ansi;
    return utf8Mark + text.toUtf8();
}

} // namespace scripting

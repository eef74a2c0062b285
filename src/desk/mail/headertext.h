/// The free text of headers: folding, encoded words, raw 8-bit characters.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

namespace desk {

class CharsetHints;

/// The text of a header's value. Words encoded by RFC 2047 are decoded wherever they stand, also broken ones: with
/// blanks or 8-bit characters inside, split in the middle of a character, inside quotes. What is not encoded is guessed
/// (see decodeText). The result is one clean line (see oneLine).
QString decodeHeader(QByteArrayView raw, const CharsetHints &hints);

/// The text without control characters (they become blanks; a line break with the blanks behind it becomes one) and
/// without blanks at the ends: what can stand in a header.
QString oneLine(const QString &text);

/// Finds encoded words in a header's value, in time in line with its length.
class EncodedWordReader {
  public:
    /// REQUIRES: both outlive the reader.
    EncodedWordReader(QByteArrayView raw, const CharsetHints &hints) : m_raw(raw), m_hints(hints) {}

    /// Reads the encoded words that start at `position` and have only blanks between them: their text, with `position`
    /// moved behind the last. Nothing when no encoded word starts there.
    std::optional<QString> read(qsizetype &position);

  private:
    struct Word {
        QByteArrayView charset;
        QByteArray bytes;
        qsizetype end;
    };
    std::optional<Word> wordAt(qsizetype position);
    /// The next "?=" from there on, or -1.
    qsizetype endFrom(qsizetype position);

    QByteArrayView m_raw;
    const CharsetHints &m_hints;
    qsizetype m_knownEnd = 0;
};

/// The text as a header's value in ASCII, in words short enough to fold. The result is folded for a name of that
/// length.
QByteArray encodeHeader(const QString &text, qsizetype nameLength);

/// The text as encoded words of at most 75 characters, divided by a line break and a blank.
QByteArray encodedWords(const QString &text);

} // namespace desk

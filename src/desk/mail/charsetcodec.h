/// Character sets by their names, and the decoders of each.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace desk {

/// A character set that can be decoded; `Guess` for none.
struct Charset {
    enum class Family { Guess, Utf8, Utf16, Utf16Le, Utf16Be, Windows1252, Hz, Iconv };
    Family family = Family::Guess;
    /// For `Iconv`, the library's name of it.
    QByteArray iconvName;

    friend bool operator==(const Charset &, const Charset &) = default;
};

/// The set that a sender means by a name. `Guess` where it is empty, unknown, or says no more than ASCII.
Charset charsetNamed(QByteArrayView name);

/// A text, and how much of its bytes had no meaning where they stood. These became the characters that they are in
/// windows-1252. What is cut off at the end of the bytes does not count.
struct Decoded {
    QString text;
    qsizetype bad = 0;
};

/// Decodes every byte. REQUIRES: the family is not `Guess`.
Decoded decodeAs(QByteArrayView bytes, const Charset &charset);

/// Whether the bytes have the escapes of 7-bit Japanese or Korean: which of the two, else `Guess`.
Charset escapedCharset(QByteArrayView bytes);

/// The character of a byte in windows-1252. The five that it leaves open are the control characters of that number.
char16_t windows1252(unsigned char byte);

/// The text without a byte-order mark in front, without NUL and without halves of surrogate pairs.
QString wellFormed(QString text);

} // namespace desk

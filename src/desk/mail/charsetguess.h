/// Which character set a text is in that does not say it, or says it wrongly.
#pragma once

#include "desk/mail/charsetcodec.h"

#include <optional>

namespace desk {

/// What a message tells about its texts that name no character set, or a wrong one: how its other texts are marked, its
/// languages, and those texts themselves, since one guess for all of them is better than one for each.
class CharsetHints {
  public:
    /// Another text of the message is marked with the set of that name. What says nothing about 8-bit text (ASCII,
    /// Unicode, 7-bit sets) is passed over.
    void addCharset(QByteArrayView name);
    /// A language as headers and pages have it ("ru", "pt-BR", "zh-Hant"); a list of them counts by its first.
    void addLanguage(QByteArrayView tag);
    /// Takes the language from the letters of a text that could be read.
    void addText(QStringView text);
    /// Bytes of the message in a set that nobody named. Nothing is taken of what is ASCII or UTF-8.
    void addSample(QByteArrayView bytes);

    [[nodiscard]] const QList<Charset> &charsets() const { return m_charsets; }
    /// The sets in which the language is written, the commonest first; empty when it is not known or needs none.
    [[nodiscard]] QList<Charset> charsetsOfLanguage() const;
    [[nodiscard]] QByteArrayView sample() const { return m_sample; }
    /// The set that the sample's statistics show; `Guess` for none.
    [[nodiscard]] Charset detected() const;
    /// Whether one more text may be looked at for itself, which costs more than decoding it. False once that was done
    /// oftener than in any honest message.
    [[nodiscard]] bool mayLook() const;

  private:
    QList<Charset> m_charsets;
    QByteArray m_language;
    QByteArray m_sample;
    mutable std::optional<Charset> m_detected;
    mutable int m_looks = 0;
};

/// The set that bytes are in: UTF-16 by its mark, 7-bit Japanese and Korean by their escapes, UTF-8 where the bytes are
/// valid in it. Of the sets that the hints and the bytes' statistics name, else the one in which the bytes make the
/// most plausible text, where several are as good the one named first; windows-1252 where nothing speaks for another.
///
/// UTF-7 is never guessed: any ASCII text could be it, and what looks harmless to others would be markup here.
Charset guessCharset(QByteArrayView bytes, const CharsetHints &hints);

/// Decodes the pieces of a header's value, which stand between encoded words, brackets and commas. The set is guessed
/// once for the whole value.
class HeaderText {
  public:
    HeaderText(QByteArrayView value, const CharsetHints &hints);

    /// The text of a piece. UTF-8 is recognised in a single piece where nothing speaks for another set.
    [[nodiscard]] QString decode(QByteArrayView piece) const;
    /// `Guess` where the whole value is ASCII or UTF-8.
    [[nodiscard]] const Charset &charset() const { return m_charset; }

  private:
    Charset m_charset;
};

} // namespace desk

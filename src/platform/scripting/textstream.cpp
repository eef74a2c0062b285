#include "platform/scripting/textstream.h"

#include "platform/scripting/replacement.h"
#include "platform/value/failure.h"

namespace scripting {

namespace {
constexpr qint32 badFileMode = 54;
constexpr qint32 badFileNumber = 52;
} // namespace

TextStream::TextStream(QString text) : m_text(std::move(text)) {}

TextStream::TextStream(const QString &path, bool unicode)
    : m_target(std::make_unique<Replacement>(path)), m_unicode(unicode), m_writing(true) {}

TextStream::~TextStream() {
    Attempt([&] { Close(); });
}

void TextStream::require(bool writing) const {
    if (!m_open)
        throw Failure(badFileNumber, QStringLiteral("The text file is closed already."));
    if (m_writing != writing)
        throw Failure(badFileMode, m_writing
                                       ? QStringLiteral("The text file is open for writing: it can't be read.")
                                       : QStringLiteral("The text file is open for reading: it can't be written."));
}

QString TextStream::ReadAll() {
    require(false);
    if (AtEndOfStream())
        throw Failure(failures::inputPastEnd);
    const QString rest = m_text.mid(m_position);
    m_position = m_text.size();
    return rest;
}

bool TextStream::AtEndOfStream() const {
    require(false);
    return m_position >= m_text.size();
}

void TextStream::Write(const QString &text) {
    require(true);
    m_text += text;
}

void TextStream::Close() {
    if (!m_open)
        return;
    m_open = false;
    if (const std::unique_ptr<Replacement> target = std::move(m_target))
        target->commit(encodeText(m_text, m_unicode));
}

} // namespace scripting

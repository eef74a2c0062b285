#include "desk/mail/messagehints.h"

#include "desk/mail/charset.h"
#include "desk/mail/headertext.h"

namespace desk {
namespace {

/// What of a page is searched for the names of its set and language.
constexpr qsizetype pageHead = 2048;
constexpr qsizetype longestSample = qsizetype{16} * 1024;
/// Of the fields and parts of a message, those that are asked.
constexpr int mostFields = 500;
constexpr int mostParts = 20;
constexpr int mostWords = 20;

/// The value of an attribute in the markup at the front of a page, as `name` ("charset=") introduces it.
QByteArray attributeIn(const QByteArray &head, const char *name) {
    qsizetype at = head.indexOf(name);
    if (at < 0)
        return {};
    at += static_cast<qsizetype>(qstrlen(name));
    while (at < head.size() && QByteArrayView("\"' ").contains(head[at]))
        ++at;
    qsizetype end = at;
    while (end < head.size() && !QByteArrayView("\"' >/;").contains(head[end]))
        ++end;
    return head.sliced(at, end - at);
}

QByteArray charsetOfPage(const QByteArray &head) {
    const QByteArray name = attributeIn(head, "charset=");
    // Bytes in which this could be read are not in UTF-16, whatever they say.
    if (name.startsWith("utf-16"))
        return "utf-8";
    return name.contains("utf-7") || name.contains("utf7") ? QByteArray() : name;
}

/// The sets of the encoded words in a field.
void addWords(QByteArrayView value, CharsetHints &hints) {
    qsizetype at = value.indexOf("=?");
    bool isEncoded = false;
    for (int i = 0; i < mostWords && at >= 0; ++i) {
        const qsizetype end = value.indexOf('?', at + 2);
        if (end < 0)
            break;
        hints.addCharset(value.sliced(at + 2, end - at - 2));
        isEncoded = true;
        at = value.indexOf("=?", end + 1);
    }
    if (isEncoded)
        hints.addText(decodeHeader(value, CharsetHints()));
}

QByteArray field(GMimeObject *object, const char *name) {
    GMimeHeader *header = g_mime_header_list_get_header(g_mime_object_get_header_list(object), name);
    return header ? QByteArray(g_mime_header_get_raw_value(header)) : QByteArray();
}

void addFields(GMimeObject *object, CharsetHints &hints) {
    GMimeHeaderList *list = g_mime_object_get_header_list(object);
    const int count = std::min(g_mime_header_list_get_count(list), mostFields);
    for (int i = 0; i < count; ++i) {
        const char *raw = g_mime_header_get_raw_value(g_mime_header_list_get_header_at(list, i));
        const QByteArrayView value(raw, raw ? static_cast<qsizetype>(qstrnlen(raw, longestSample)) : 0);
        hints.addSample(value);
        addWords(value, hints);
    }
}

void addText(const Leaf &leaf, CharsetHints &hints) {
    const QByteArray bytes = leaf.content(longestSample);
    if (leaf.type == "text/html")
        hints.addLanguage(attributeIn(bytes.first(std::min(bytes.size(), pageHead)).toLower(), "lang="));
    const QByteArray name = charsetOf(leaf, bytes);
    const Charset charset = charsetNamed(name);
    const bool isMarked = charset.family != Charset::Family::Guess;
    const Decoded decoded = isMarked ? decodeAs(bytes, charset) : Decoded();
    if (isMarked && decoded.bad == 0)
        hints.addText(decoded.text);
    // A name for what is only ASCII says little: many programs put the same one into every message.
    if (isMarked && decoded.bad == 0 && !isAscii(bytes))
        hints.addCharset(name);
    else if (!isMarked || decoded.bad > 0)
        hints.addSample(bytes);
}

/// The byte that a character of windows-1252 is; -1 for others.
int byteOf(QChar c) {
    for (int byte = 0x80; byte < 0xA0; ++byte) {
        if (windows1252(static_cast<unsigned char>(byte)) == c)
            return byte;
    }
    return c < QChar(0x100) ? c.unicode() : -1;
}

} // namespace

CharsetHints hintsOf(GMimeObject *root, const Layout &layout) {
    CharsetHints hints;
    addFields(root, hints);
    hints.addLanguage(field(root, "Content-Language"));
    int parts = 0;
    for (const std::vector<Leaf> *leaves : {&layout.text, &layout.html, &layout.attachments}) {
        for (const Leaf &leaf : *leaves) {
            if (!leaf.isText() || ++parts > mostParts)
                continue;
            hints.addLanguage(field(leaf.object, "Content-Language"));
            addText(leaf, hints);
        }
    }
    return hints;
}

QByteArray charsetOf(const Leaf &leaf, QByteArrayView bytes) {
    const QByteArray named = leaf.parameter("charset");
    if (leaf.type != "text/html" || charsetNamed(named).family != Charset::Family::Guess || isUtf8(bytes))
        return named;
    const QByteArray ofPage = charsetOfPage(bytes.first(std::min(bytes.size(), pageHead)).toByteArray().toLower());
    return ofPage.isEmpty() ? named : ofPage;
}

QString nameOf(const Leaf &leaf, const CharsetHints &hints) {
    if (leaf.name.isEmpty() ||
        (isUtf8(field(leaf.object, "Content-Disposition")) && isUtf8(field(leaf.object, "Content-Type"))))
        return leaf.name;
    // The library took such bytes for windows-1252.
    QByteArray bytes;
    for (const QChar c : leaf.name) {
        const int byte = byteOf(c);
        if (byte < 0)
            return leaf.name;
        bytes += static_cast<char>(byte);
    }
    return oneLine(decodeText(bytes, {}, hints));
}

} // namespace desk

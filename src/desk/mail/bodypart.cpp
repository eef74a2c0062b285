#include "desk/mail/bodypart.h"

#include "desk/mail/gmime.h"
#include "desk/mail/headers.h"
#include "desk/mail/headertext.h"

#include <QUuid>

namespace desk {
namespace {

constexpr qsizetype longestLine = 998;

struct LineShape {
    bool eightBit = false;
    bool nul = false;
    bool bareReturn = false;
    bool trailingBlank = false;
    bool from = false; ///< a line that a mailbox file would change
    qsizetype longest = 0;
};

LineShape shapeOf(const QByteArray &bytes) {
    LineShape shape;
    for (qsizetype start = 0; start < bytes.size();) {
        qsizetype end = bytes.indexOf('\n', start);
        if (end < 0)
            end = bytes.size();
        QByteArrayView line = QByteArrayView(bytes).sliced(start, end - start);
        if (end < bytes.size() && line.endsWith('\r'))
            line.chop(1);
        shape.longest = std::max(shape.longest, line.size());
        shape.bareReturn = shape.bareReturn || line.contains('\r');
        shape.nul = shape.nul || line.contains('\0');
        shape.from = shape.from || line.startsWith("From ");
        shape.trailingBlank = shape.trailingBlank || line.endsWith(' ') || line.endsWith('\t');
        shape.eightBit = shape.eightBit ||
                         std::any_of(line.begin(), line.end(), [](char c) { return static_cast<signed char>(c) < 0; });
        start = end + 1;
    }
    return shape;
}

QByteArray withLineFeeds(QByteArray bytes) { return bytes.replace("\r\n", "\n"); }

QByteArray withLineEnds(const QByteArray &bytes) { return withLineFeeds(bytes).replace("\n", "\r\n"); }

QByteArray base64Lines(const QByteArray &bytes) {
    constexpr qsizetype bytesInLine = 57;
    QByteArray lines;
    lines.reserve(bytes.size() / 57 * 78 + 80);
    for (qsizetype at = 0; at < bytes.size(); at += bytesInLine)
        lines += bytes.mid(at, bytesInLine).toBase64() + "\r\n";
    return lines;
}

QByteArray quotedPrintable(const QByteArray &bytes) {
    GMimeEncoding state;
    g_mime_encoding_init_encode(&state, GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE);
    const QByteArray input = withLineFeeds(bytes);
    const auto length = static_cast<std::size_t>(input.size());
    QByteArray output(static_cast<qsizetype>(g_mime_encoding_outlen(&state, length)) + 16, Qt::Uninitialized);
    const std::size_t written = g_mime_encoding_flush(&state, input.constData(), length, output.data());
    output.truncate(static_cast<qsizetype>(written));
    return withLineEnds(output);
}

/// A parameter of a content header, on a line of its own; in numbered and encoded pieces where it is no plain text.
QByteArray parameter(const QByteArray &name, const QString &value) {
    constexpr qsizetype charactersInPiece = 50;
    const QByteArray utf8 = value.toUtf8();
    const bool plain =
        utf8.size() <= charactersInPiece && !utf8.contains("=?") &&
        std::all_of(utf8.begin(), utf8.end(), [](char c) { return c >= ' ' && c < 0x7F && c != '"' && c != '\\'; });
    if (plain)
        return ";\r\n " + name + "=\"" + utf8 + '"';
    QByteArray result;
    QByteArray piece = "utf-8''";
    int number = 0;
    const auto finish = [&] {
        result += ";\r\n " + name + '*' + QByteArray::number(number++) + "*=" + piece;
        piece.clear();
    };
    for (const char c : utf8) {
        if (piece.size() > charactersInPiece)
            finish();
        piece += QByteArray(1, c).toPercentEncoding("", "~"); // '~' may stand in no parameter of some old readers
    }
    finish();
    return result;
}

BodyPart plainMessage(const QByteArray &data, const QByteArray &headers) {
    const LineShape shape = shapeOf(data);
    if (shape.nul || shape.bareReturn || shape.longest > longestLine)
        return {headers + "Content-Transfer-Encoding: base64\r\n", base64Lines(data)};
    const QByteArray encoding = shape.eightBit ? "8bit" : "7bit";
    return {headers + "Content-Transfer-Encoding: " + encoding + "\r\n", withLineEnds(data)};
}

} // namespace

BodyPart textPart(const QByteArray &subtype, const QString &text) {
    const QByteArray bytes = text.toUtf8();
    const LineShape shape = shapeOf(bytes);
    const QByteArray headers = "Content-Type: text/" + subtype + "; charset=utf-8\r\nContent-Transfer-Encoding: ";
    const bool plain = !shape.eightBit && !shape.nul && !shape.bareReturn && !shape.from && !shape.trailingBlank &&
                       shape.longest <= longestLine;
    if (plain)
        return {headers + "7bit\r\n", bytes};
    const auto ascii =
        std::count_if(bytes.begin(), bytes.end(), [](char c) { return static_cast<signed char>(c) >= 0; });
    if (ascii * 4 > bytes.size() * 3 && !shape.nul && !shape.bareReturn)
        return {headers + "quoted-printable\r\n", quotedPrintable(bytes)};
    return {headers + "base64\r\n", base64Lines(bytes)};
}

BodyPart attachmentPart(const Attachment &attachment) {
    const QString name = oneLine(attachment.name);
    QByteArray headers = "Content-Type: " + cleanMimeType(attachment.mimeType).toLatin1();
    if (const QString charset = cleanCharset(attachment.charset); !charset.isEmpty())
        headers += "; charset=" + charset.toLatin1();
    headers += QByteArray("\r\nContent-Disposition: ") + (attachment.isInline ? "inline" : "attachment");
    if (!name.isEmpty())
        headers += parameter("filename", name);
    headers += "\r\n";
    if (const QString id = cleanIdentifier(attachment.contentId); !id.isEmpty())
        headers += "Content-ID: <" + id.toUtf8() + ">\r\n";
    if (attachment.type == AttachmentType::EmbeddedMessage)
        return plainMessage(attachment.data, headers);
    return {headers + "Content-Transfer-Encoding: base64\r\n", base64Lines(attachment.data)};
}

BodyPart multipart(const QByteArray &subtype, const QList<BodyPart> &parts) {
    const QByteArray boundary = "=_" + QUuid::createUuid().toByteArray(QUuid::Id128);
    BodyPart whole;
    whole.headers = "Content-Type: multipart/" + subtype + ";\r\n boundary=\"" + boundary + "\"\r\n";
    for (const BodyPart &part : parts)
        whole.content += "--" + boundary + "\r\n" + part.headers + "\r\n" + part.content + "\r\n";
    whole.content += "--" + boundary + "--\r\n";
    return whole;
}

} // namespace desk

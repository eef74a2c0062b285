#include "desk/mail/parser.h"

#include "desk/mail/addresses.h"
#include "desk/mail/charset.h"
#include "desk/mail/gmime.h"
#include "desk/mail/headers.h"
#include "desk/mail/headertext.h"
#include "desk/mail/html.h"
#include "desk/mail/prescan.h"
#include "desk/mail/structure.h"

namespace desk {
namespace {

const char *const unreadName = "unread.eml";

QString withLineEnds(const QString &text) {
    QString result;
    result.reserve(text.size() + text.size() / 32);
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'\n' || text[i] == u'\r') {
            i += text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n' ? 1 : 0;
            result += u"\r\n";
        } else {
            result += text[i];
        }
    }
    return result;
}

/// The character set that a page names itself.
QByteArray charsetOfPage(const QByteArray &page) {
    const QByteArray head = page.first(std::min<qsizetype>(page.size(), 2048)).toLower();
    qsizetype at = head.indexOf("charset=");
    if (at < 0)
        return {};
    at += static_cast<qsizetype>(qstrlen("charset="));
    while (at < head.size() && QByteArrayView("\"' ").contains(head[at]))
        ++at;
    qsizetype end = at;
    while (end < head.size() && !QByteArrayView("\"' >/;").contains(head[end]))
        ++end;
    const QByteArray name = head.sliced(at, end - at);
    // Bytes in which this could be read are not in UTF-16, whatever they say.
    return name.startsWith("utf-16") ? QByteArray("utf-8") : name;
}

QString textOf(const Leaf &leaf) {
    const QByteArray bytes = leaf.content();
    const QByteArray inside = leaf.type == "text/html" ? charsetOfPage(bytes) : QByteArray();
    return withLineEnds(decodeText(bytes, leaf.parameter("charset"), inside));
}

void appendText(QString &body, const QString &text) {
    if (!body.isEmpty() && !body.endsWith(u"\r\n"))
        body += u"\r\n";
    body += text;
}

/// Puts more of the body behind the body of a page, so that it stays one page.
void appendPage(QString &page, const QString &more) {
    const qsizetype end = page.lastIndexOf(u"</body", -1, Qt::CaseInsensitive);
    if (page.isEmpty() || end < 0)
        page += bodyOfPage(more);
    else
        page.insert(end, bodyOfPage(more));
}

bool anyOfType(const std::vector<Leaf> &leaves, const char *type) {
    return std::any_of(leaves.begin(), leaves.end(), [&](const Leaf &leaf) { return leaf.type == type; });
}

void readBodies(const Layout &layout, Message &message) {
    if (anyOfType(layout.text, "text/plain")) {
        for (const Leaf &leaf : layout.text)
            appendText(message.text, leaf.type == "text/html" ? textFromHtml(textOf(leaf)) : textOf(leaf));
    }
    if (!anyOfType(layout.html, "text/html"))
        return;
    for (const Leaf &leaf : layout.html) {
        const QString text = textOf(leaf);
        if (text.isEmpty())
            continue;
        const QString page = leaf.type == "text/html" ? text : "<div>" + htmlFromText(text) + "</div>";
        if (message.html.isEmpty())
            message.html = page;
        else
            appendPage(message.html, page);
    }
}

AttachmentType attachmentType(const QString &mimeType, const QByteArray &data) {
    if (mimeType == "application/x-oleobject" || mimeType == "application/oleobject")
        return AttachmentType::Ole;
    const bool message = mimeType == "message/rfc822" || mimeType == "message/rfc2822" || mimeType == "message/global";
    return message && beginsWithHeader(data) ? AttachmentType::EmbeddedMessage : AttachmentType::ByValue;
}

bool isShownInside(const Leaf &leaf, const QString &contentId) {
    if (leaf.disposition == "attachment" || leaf.isText())
        return false;
    return leaf.disposition == "inline" || !contentId.isEmpty() || leaf.type.startsWith("image/") ||
           leaf.type.startsWith("audio/") || leaf.type.startsWith("video/");
}

Attachment readAttachment(const Leaf &leaf) {
    Attachment attachment;
    attachment.name = leaf.name;
    attachment.mimeType = cleanMimeType(QString::fromLatin1(leaf.type));
    attachment.charset = cleanCharset(QString::fromLatin1(leaf.parameter("charset")));
    const Headers headers(leaf.object);
    attachment.contentId = headers.identifier("Content-ID");
    attachment.isInline = isShownInside(leaf, attachment.contentId);
    attachment.data = leaf.content();
    attachment.type = attachmentType(attachment.mimeType, attachment.data);
    return attachment;
}

QByteArray charsetOfBody(const Layout &layout) {
    const std::vector<Leaf> &leaves = layout.text.empty() ? layout.html : layout.text;
    return leaves.empty() ? QByteArray() : leaves.front().parameter("charset");
}

void readHeaders(const Headers &headers, Message &message) {
    message.subject = headers.text("Subject");
    message.from = headers.addresses("From").value(0);
    message.sender = headers.addresses("Sender").value(0);
    if (message.from.isEmpty())
        std::swap(message.from, message.sender);
    if (message.sender == message.from)
        message.sender = {};
    message.replyTo = headers.addresses("Reply-To");
    message.to = headers.addresses("To");
    message.cc = headers.addresses("Cc");
    message.bcc = headers.addresses("Bcc");
    message.sentAt = headers.date("Date");
    message.importance = headers.importance();
    message.sensitivity = headers.sensitivity();
    message.readReceiptRequested = headers.has("Disposition-Notification-To") || headers.has("Return-Receipt-To") ||
                                   headers.has("X-Confirm-Reading-To");
    message.messageId = headers.identifier("Message-ID");
    message.inReplyTo = headers.identifiers("In-Reply-To");
    message.references = headers.identifiers("References");
}

bool isEmpty(const Message &message) {
    return message.text.trimmed().isEmpty() && message.html.isEmpty() && message.attachments.isEmpty();
}

void readParts(const Layout &layout, const QByteArray &rest, Message &message) {
    readBodies(layout, message);
    for (const Leaf &leaf : layout.attachments)
        message.attachments.append(readAttachment(leaf));
    if (layout.unread.isEmpty() && rest.isEmpty())
        return;
    Attachment unread;
    unread.name = unreadName;
    unread.data = layout.unread + rest;
    message.attachments.append(unread);
}

} // namespace

Message parseMessage(const QByteArray &bytes) {
    const Prescan scan = prescan(bytes);
    Message message;
    const GRef<GMimeObject> root = scan.hasHeader ? parseParts(scan.bytes, scan.affordable) : GRef<GMimeObject>();
    if (!root) {
        message.text = withLineEnds(decodeText(scan.bytes, {}));
        return message;
    }
    const Layout layout = layOut(root.get());
    readHeaders(Headers(root.get(), charsetOfBody(layout)), message);
    readParts(layout, scan.bytes.mid(scan.affordable), message);
    if (isEmpty(message) && scan.strayLine >= 0)
        message.text = withLineEnds(decodeText(scan.bytes.mid(scan.strayLine), {}));
    return message;
}

} // namespace desk

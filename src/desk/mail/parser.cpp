#include "desk/mail/parser.h"

#include "desk/mail/addresses.h"
#include "desk/mail/bounds.h"
#include "desk/mail/charset.h"
#include "desk/mail/charsetguess.h"
#include "desk/mail/gmime.h"
#include "desk/mail/headers.h"
#include "desk/mail/headertext.h"
#include "desk/mail/html.h"
#include "desk/mail/messagehints.h"
#include "desk/mail/prescan.h"
#include "desk/mail/structure.h"

namespace desk {
namespace {

const char *const unreadName = "unread.eml";

/// What of a body is read, in bytes. Nobody reads so much, and each byte is four in memory, several times over.
constexpr qsizetype longestBody = qsizetype{16} * 1024 * 1024;
const QString cutNotice =
    "[The text goes on and is too long to be shown. Save this message as a file to read all of it.]";

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

/// Reads the texts of a body one after another, as far as a body goes.
class BodyReader {
  public:
    explicit BodyReader(const CharsetHints &hints) : m_hints(hints) {}

    QString read(const Leaf &leaf) {
        // One more byte tells whether there is more.
        const QByteArray bytes = leaf.content(longestBody - m_read + 1);
        return decoded(bytes, charsetOf(leaf, bytes));
    }

    QString read(QByteArrayView bytes) { return decoded(bytes.first(std::min(bytes.size(), longestBody + 1)), {}); }

    /// Whether something was left out.
    [[nodiscard]] bool isCut() const { return m_isCut; }

  private:
    QString decoded(QByteArrayView bytes, const QByteArray &charset) {
        const qsizetype room = longestBody - m_read;
        m_isCut = m_isCut || bytes.size() > room;
        const QByteArrayView kept = bytes.size() > room ? upToLineEnd(bytes.first(room)) : bytes;
        // Behind what is left out nothing of the body is shown any more.
        m_read = m_isCut ? longestBody : m_read + kept.size();
        return withLineEnds(decodeText(kept, charset, m_hints));
    }

    /// A character or a tag is seldom longer than a line.
    static QByteArrayView upToLineEnd(QByteArrayView bytes) {
        constexpr qsizetype longestLine = qsizetype{64} * 1024;
        const qsizetype end = bytes.lastIndexOf('\n');
        return bytes.size() - end <= longestLine ? bytes.first(end + 1) : bytes;
    }

    const CharsetHints &m_hints;
    qsizetype m_read = 0;
    bool m_isCut = false;
};

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

void readText(const Layout &layout, const CharsetHints &hints, Message &message) {
    BodyReader reader(hints);
    for (const Leaf &leaf : layout.text) {
        const QString text = reader.read(leaf);
        appendText(message.text, leaf.type == "text/html" ? textFromHtml(text) : text);
    }
    if (reader.isCut())
        appendText(message.text, cutNotice + "\r\n");
}

void readHtml(const Layout &layout, const CharsetHints &hints, Message &message) {
    BodyReader reader(hints);
    for (const Leaf &leaf : layout.html) {
        const QString text = reader.read(leaf);
        if (text.isEmpty())
            continue;
        const QString page = leaf.type == "text/html" ? text : "<div>" + htmlFromText(text) + "</div>";
        if (message.html.isEmpty())
            message.html = page;
        else
            appendPage(message.html, page);
    }
    if (reader.isCut())
        appendPage(message.html, "<p>" + cutNotice + "</p>");
}

void readBodies(const Layout &layout, const CharsetHints &hints, Message &message) {
    if (anyOfType(layout.text, "text/plain"))
        readText(layout, hints, message);
    if (anyOfType(layout.html, "text/html"))
        readHtml(layout, hints, message);
}

QString textOnly(QByteArrayView bytes) {
    const CharsetHints hints;
    BodyReader reader(hints);
    QString text = reader.read(bytes);
    if (reader.isCut())
        appendText(text, cutNotice + "\r\n");
    return text;
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

Attachment readAttachment(const Leaf &leaf, const CharsetHints &hints) {
    Attachment attachment;
    attachment.name = nameOf(leaf, hints);
    attachment.mimeType = cleanMimeType(QString::fromLatin1(leaf.type));
    attachment.charset = cleanCharset(QString::fromLatin1(leaf.parameter("charset")));
    const Headers headers(leaf.object, hints);
    attachment.contentId = headers.identifier("Content-ID");
    attachment.isInline = isShownInside(leaf, attachment.contentId);
    attachment.data = leaf.content();
    attachment.type = attachmentType(attachment.mimeType, attachment.data);
    return attachment;
}

/// Whether mail can be sent there. "/" begins an address in the host's own directory.
bool isUsable(const Address &address) {
    const qsizetype at = address.address.lastIndexOf(u'@');
    if (address.address.size() > longestAddress)
        return false;
    return (at > 0 && at + 1 < address.address.size()) || address.address.startsWith(u'/');
}

/// The first with an address, with the name that stands beside it.
Address firstUsable(const QList<Address> &addresses) {
    const auto found = std::find_if(addresses.begin(), addresses.end(), isUsable);
    return found == addresses.end() ? Address() : *found;
}

/// Who wrote the message, so that he can be answered. Where "From" has no address, the others are asked in the order of
/// how sure they name a person who wrote this: "Sender" is one mailbox that sent it, "Reply-To" may be a list,
/// "Return-Path" is often a program that counts bounces. A name is kept with its own address: another's beside it would
/// say that the mail came from there.
Address writerOf(const Headers &headers) {
    const QList<Address> from = headers.addresses("From");
    for (const Address &address :
         {firstUsable(from), firstUsable(headers.addresses("Sender")), firstUsable(headers.addresses("Reply-To")),
          firstUsable(headers.addresses("Return-Path"))}) {
        if (!address.isEmpty())
            return address;
    }
    return from.isEmpty() ? headers.addresses("Sender").value(0) : from.first();
}

void readHeaders(const Headers &headers, Message &message) {
    message.subject = headers.text("Subject");
    message.from = writerOf(headers);
    message.sender = headers.addresses("Sender").value(0);
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

void readParts(const Layout &layout, const CharsetHints &hints, const QByteArray &rest, Message &message) {
    readBodies(layout, hints, message);
    for (const Leaf &leaf : layout.attachments)
        message.attachments.append(readAttachment(leaf, hints));
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
    const Parts parts = scan.hasHeader ? parseParts(scan.bytes, scan.affordable) : Parts();
    GMimeObject *root = parts.root.get();
    if (!root) {
        message.text = textOnly(scan.bytes);
        return message;
    }
    const Layout layout = layOut(root);
    const CharsetHints hints = hintsOf(root, layout);
    readHeaders(Headers(root, hints), message);
    readParts(layout, hints, scan.bytes.mid(scan.affordable), message);
    if (isEmpty(message) && scan.strayLine >= 0)
        message.text = textOnly(QByteArrayView(scan.bytes).sliced(scan.strayLine));
    return message;
}

QString subjectOf(const QByteArray &message) {
    constexpr qsizetype longestHeader = qsizetype{1024} * 1024;
    const Prescan scan = prescan(message.first(std::min(message.size(), longestHeader)));
    const Parts parts = scan.hasHeader ? parseParts(scan.bytes, scan.affordable) : Parts();
    GMimeObject *root = parts.root.get();
    return root ? Headers(root, hintsOf(root, layOut(root))).text("Subject") : QString();
}

} // namespace desk

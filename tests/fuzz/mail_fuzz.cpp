// Any bytes are a message; and what was read of them can be written and read again without a difference.
#include "fault.h"

#include "desk/mail/automatic.h"
#include "desk/mail/composer.h"
#include "desk/mail/parser.h"

using namespace desk;

namespace {

/// The message as it must come back: with the identifier and the date that writing adds, and with the line ends of what
/// travels unencoded.
Message comparable(Message message, const Message &other) {
    if (message.messageId.isEmpty())
        message.messageId = other.messageId;
    if (!message.sentAt.isValid())
        message.sentAt = other.sentAt;
    for (Attachment &attachment : message.attachments) {
        if (attachment.type == AttachmentType::EmbeddedMessage)
            attachment.data.replace("\r\n", "\n");
    }
    return message;
}

std::string shown(const QString &text) { return text.toUtf8().toPercentEncoding(" <>@,;:\"/").toStdString(); }

std::string shown(const QList<Address> &list) {
    std::string result;
    for (const Address &address : list)
        result += "[" + shown(address.name) + "|" + shown(address.address) + "]";
    return result;
}

std::string difference(const Message &first, const Message &second) {
    const auto differ = [](const char *field, const std::string &a, const std::string &b) {
        return std::string(field) + " was\n" + a + "\nand came back as\n" + b;
    };
    if (first.subject != second.subject)
        return differ("subject", shown(first.subject), shown(second.subject));
    if (first.text != second.text)
        return differ("text", shown(first.text), shown(second.text));
    if (first.html != second.html)
        return differ("html", shown(first.html), shown(second.html));
    const auto people = [](const Message &message) {
        return shown(QList<Address>{message.from, message.sender}) + shown(message.replyTo) + "to" + shown(message.to) +
               "cc" + shown(message.cc) + "bcc" + shown(message.bcc);
    };
    if (people(first) != people(second))
        return differ("people", people(first), people(second));
    for (qsizetype i = 0; i < std::min(first.attachments.size(), second.attachments.size()); ++i) {
        const Attachment &a = first.attachments[i];
        const Attachment &b = second.attachments[i];
        if (a != b)
            return differ("attachment", shown(a.name + ", " + a.mimeType + ", " + a.charset + ", " + a.contentId),
                          shown(b.name + ", " + b.mimeType + ", " + b.charset + ", " + b.contentId));
    }
    if (first.attachments.size() != second.attachments.size())
        return differ("number of attachments", std::to_string(first.attachments.size()),
                      std::to_string(second.attachments.size()));
    const auto ids = [](const Message &message) {
        return shown(message.messageId + " / " + message.inReplyTo.join(u' ') + " / " + message.references.join(u' '));
    };
    return differ("another field", ids(first) + shown(first.sentAt.toString(Qt::ISODate)),
                  ids(second) + shown(second.sentAt.toString(Qt::ISODate)));
}

} // namespace

std::string faultOf(const QByteArray &bytes) {
    const Message message = parseMessage(bytes);
    const Message again = parseMessage(composeMessage(message));
    const Message first = comparable(message, again);
    const Message second = comparable(again, again);
    for (const Attachment &attachment : message.attachments) {
        if (safeFileName(attachment).isEmpty() || safeFileName(attachment).contains(u'/'))
            return "unsafe file name " + shown(safeFileName(attachment));
    }
    static_cast<void>(message.bodyText());
    if (automaticKind("X-Desk-Loop: mark\r\nX-Next: field\r\n" + bytes, {{}, {"mark"}}) != AutomaticKind::OwnMail)
        return "its header is not seen as a header";
    return first == second ? std::string() : difference(first, second);
}

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

/// A message's fields by their names.
std::vector<std::pair<std::string, std::string>> fieldsOf(const Message &message) {
    std::vector<std::pair<std::string, std::string>> fields{
        {"subject", shown(message.subject)},
        {"text", shown(message.text)},
        {"html", shown(message.html)},
        {"people", shown(QList<Address>{message.from, message.sender}) + shown(message.replyTo) + "to" +
                       shown(message.to) + "cc" + shown(message.cc) + "bcc" + shown(message.bcc)},
        {"identifiers", shown(message.messageId + " / " + message.inReplyTo.join(u' ') + " / " +
                              message.references.join(u' ') + message.sentAt.toString(Qt::ISODate))},
        {"number of attachments", std::to_string(message.attachments.size())}};
    for (const Attachment &each : message.attachments)
        fields.emplace_back("attachment",
                            shown(each.name + ", " + each.mimeType + ", " + each.charset + ", " + each.contentId));
    return fields;
}

std::string difference(const Message &first, const Message &second) {
    const auto was = fieldsOf(first);
    const auto is = fieldsOf(second);
    const auto [a, b] = std::mismatch(was.begin(), was.end(), is.begin(), is.end());
    return a == was.end() ? "another field differs"
                          : a->first + " was\n" + a->second + "\nand came back as\n" + b->second;
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

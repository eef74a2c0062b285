#include "desk/mail/composer.h"

#include "desk/mail/addresses.h"
#include "desk/mail/bodypart.h"
#include "desk/mail/headers.h"
#include "desk/mail/headertext.h"
#include "platform/value/datetime.h"

#include <QUuid>

namespace desk {
namespace {

class HeaderBlock {
  public:
    void raw(const char *name, const QByteArray &value) {
        if (!value.isEmpty())
            m_text += QByteArray(name) + ": " + value + "\r\n";
    }

    void text(const char *name, const QString &value) {
        raw(name, encodeHeader(value, static_cast<qsizetype>(qstrlen(name))));
    }

    void addresses(const char *name, const QList<Address> &list) { raw(name, encodeAddresses(list)); }

    void identifiers(const char *name, const QStringList &list) {
        QByteArray value;
        for (const QString &entry : list) {
            if (const QString id = cleanIdentifier(entry); !id.isEmpty())
                value += (value.isEmpty() ? "<" : "\r\n <") + id.toUtf8() + '>';
        }
        raw(name, value);
    }

    [[nodiscard]] const QByteArray &bytes() const { return m_text; }

  private:
    QByteArray m_text;
};

QByteArray formatDate(const QDateTime &moment) {
    const int offset = moment.offsetFromUtc() / 60;
    const QByteArray zone =
        QByteArray::number(std::abs(offset) / 60 * 100 + std::abs(offset) % 60).rightJustified(4, '0');
    return QLocale::c().toString(moment, "ddd, d MMM yyyy hh:mm:ss ").toLatin1() + (offset < 0 ? '-' : '+') + zone;
}

QDateTime now() {
    const QDateTime local = Clock::now().toQt();
    return local.toOffsetFromUtc(local.offsetFromUtc());
}

void writePriority(const Message &message, HeaderBlock &block) {
    if (message.importance != Importance::Normal) {
        const bool high = message.importance == Importance::High;
        block.raw("Importance", high ? "high" : "low");
        block.raw("X-Priority", high ? "1" : "5");
    }
    static constexpr std::array<const char *, 4> words = {"", "Personal", "Private", "Company-Confidential"};
    block.raw("Sensitivity", words.at(static_cast<std::size_t>(message.sensitivity)));
}

QByteArray writeHeaders(const Message &message) {
    HeaderBlock block;
    block.raw("Date", formatDate(message.sentAt.isValid() ? message.sentAt : now()));
    block.addresses("From", {message.from});
    block.addresses("Sender", {message.sender});
    block.addresses("Reply-To", message.replyTo);
    block.addresses("To", message.to);
    block.addresses("Cc", message.cc);
    block.addresses("Bcc", message.bcc);
    block.text("Subject", message.subject);
    QString id = cleanIdentifier(message.messageId);
    block.identifiers("Message-ID", {id.isEmpty() ? newMessageId(message.from.address) : id});
    block.identifiers("In-Reply-To", message.inReplyTo);
    block.identifiers("References", message.references);
    writePriority(message, block);
    if (message.readReceiptRequested) {
        const QByteArray to = encodeAddresses({message.from});
        block.raw("Disposition-Notification-To", to.isEmpty() ? QByteArray("<>") : to);
    }
    block.raw("MIME-Version", "1.0");
    return block.bytes();
}

BodyPart body(const Message &message, qsizetype inlineCount) {
    QList<BodyPart> forms;
    if (!message.text.isEmpty() || message.html.isEmpty())
        forms.append(textPart("plain", message.text));
    if (!message.html.isEmpty()) {
        QList<BodyPart> page = {textPart("html", message.html)};
        for (const Attachment &attachment : message.attachments.first(inlineCount))
            page.append(attachmentPart(attachment));
        forms.append(inlineCount == 0 ? page.first() : multipart("related", page));
    }
    return forms.size() == 1 ? forms.first() : multipart("alternative", forms);
}

/// How many attachments at the front belong to the HTML body. Those behind another attachment stay where they are, so
/// that the order is kept; mail programs find them there too.
qsizetype inlineAtFront(const Message &message) {
    if (message.html.isEmpty())
        return 0;
    const auto first = std::find_if(message.attachments.begin(), message.attachments.end(),
                                    [](const Attachment &attachment) { return !attachment.isInline; });
    return first - message.attachments.begin();
}

} // namespace

QByteArray composeMessage(const Message &message, const QByteArray &furtherHeaders) {
    const qsizetype inlineCount = inlineAtFront(message);
    BodyPart whole = body(message, inlineCount);
    if (inlineCount < message.attachments.size()) {
        QList<BodyPart> parts = {whole};
        for (const Attachment &attachment : message.attachments.sliced(inlineCount))
            parts.append(attachmentPart(attachment));
        whole = multipart("mixed", parts);
    }
    return writeHeaders(message) + furtherHeaders + whole.headers + "\r\n" + whole.content;
}

QString newMessageId(const QString &address) {
    const QString domain = cleanIdentifier(address.section(u'@', -1));
    return QUuid::createUuid().toString(QUuid::WithoutBraces) + "@" +
           (domain.isEmpty() || !address.contains(u'@') ? QString("localhost") : domain);
}

} // namespace desk

#include "desk/content/itemmessage.h"

#include "desk/mail/bounds.h"
#include "desk/mail/composer.h"
#include "desk/mail/parser.h"

#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <tuple>

namespace desk {
namespace {

DateTime localMoment(const QDateTime &moment) {
    if (!moment.isValid())
        return {};
    const DateTime local = DateTime::fromQt(moment.toLocalTime());
    return local.isValid() ? local : DateTime();
}

/// Names a message without a name after its subject, if that has anything that a file could be called.
void nameBySubject(AttachmentRecord &record, const Attachment &attachment) {
    constexpr qsizetype longestTitle = 196;
    Attachment named;
    named.type = attachment.type;
    named.mimeType = attachment.mimeType;
    named.name = bounded(subjectOf(attachment.data), longestTitle);
    // No path: "TCP/IP" is all of it.
    for (QChar &c : named.name)
        c = c == u'/' || c == u'\\' ? QChar(u'_') : c;
    const QString title = safeFileName(named);
    if (title == record.fileName)
        return;
    record.displayName = title;
    named.name = title + QStringLiteral(".eml");
    record.fileName = safeFileName(named);
}

AttachmentRecord recordOf(const Attachment &attachment) {
    AttachmentRecord record;
    record.type = static_cast<qint32>(attachment.type);
    record.fileName = safeFileName(attachment);
    record.displayName = attachment.name.isEmpty() ? record.fileName : boundedFileName(attachment.name, longestName);
    if (attachment.name.isEmpty() && attachment.type == AttachmentType::EmbeddedMessage)
        nameBySubject(record, attachment);
    record.mimeType = attachment.mimeType;
    record.contentId = attachment.contentId;
    record.data = attachment.data;
    return record;
}

Address senderOf(const ItemRecord &item) {
    return {item.senderName == item.senderAddress ? QString() : item.senderName, item.senderAddress};
}

/// Whether an item is what its message said when it came. What only says how far people are with it does not count.
bool stillSays(ItemContent &item, const IncomingItem &came) {
    const auto said = [](const ItemRecord &fields) {
        return std::tie(fields.subject, fields.senderName, fields.senderAddress, fields.to, fields.cc, fields.bcc,
                        fields.replyRecipientNames, fields.importance, fields.sensitivity);
    };
    const QList<AttachmentRecord> &attached = *came.parts.attachments;
    const auto &attachments = item.attachments();
    return said(item.fields()) == said(came.fields) && item.bodies() == came.parts.bodies &&
           std::equal(attachments.begin(), attachments.end(), attached.begin(), attached.end(),
                      [&](const ItemContent::AttachmentPtr &now, const AttachmentRecord &then) {
                          return now->displayName == then.displayName && now->fileName == then.fileName &&
                                 item.attachmentData(*now) == then.data;
                      });
}

/// Qt tells what went wrong by its text alone.
Failure writeFailure(const QString &path, const QSaveFile &file) {
    const QString reason = file.errorString();
    for (const int full : {ENOSPC, EDQUOT, EFBIG}) {
        if (reason == qt_error_string(full))
            return {failures::diskFull, QStringLiteral("There is no room for %1 (%2). Make room on that disk or choose "
                                                       "another folder, and try again.")
                                            .arg(path, reason)};
    }
    if (!QFileInfo(QFileInfo(file.fileName()).path()).isDir())
        return {failures::pathNotFound,
                QStringLiteral("%1 can't be written, for there is no such folder. Choose another one.").arg(path)};
    return {
        failures::permissionDenied,
        QStringLiteral("%1 can't be written: %2. Choose another name or folder, or ask for the right to write there.")
            .arg(path, reason)};
}

bool isDirectoryAddress(const QString &address) { return address.startsWith(u'/'); }

} // namespace

IncomingItem incomingItem(const QByteArray &bytes) {
    const Message message = parseMessage(bytes);
    IncomingItem item;
    ItemRecord &fields = item.fields;
    fields.messageClass = QStringLiteral("IPM.Note");
    fields.subject = boundedSubject(message.subject);
    fields.importance = static_cast<qint32>(message.importance);
    fields.sensitivity = static_cast<qint32>(message.sensitivity);
    fields.unread = true;
    fields.bodyFormat = message.html.isEmpty() ? 1 : 2;
    const Address writer = bounded(message.from);
    fields.senderName = writer.display();
    fields.senderAddress = writer.address;
    fields.senderAddressType = isDirectoryAddress(fields.senderAddress) ? QStringLiteral("EX") : QStringLiteral("SMTP");
    fields.sentOnBehalfOf = writer.display();
    fields.replyRecipientNames = peopleText(message.replyTo);
    fields.to = peopleText(message.to);
    fields.cc = peopleText(message.cc);
    fields.bcc = peopleText(message.bcc);
    fields.readReceiptRequested = message.readReceiptRequested;
    fields.sent = true;
    fields.sentAt = localMoment(message.sentAt);
    fields.receivedAt = Clock::now();
    fields.messageId = message.messageId;
    fields.inReplyTo = threadText(message.inReplyTo);
    fields.references = threadText(message.references);

    item.parts.bodies = Bodies{message.bodyText(), message.html};
    QList<AttachmentRecord> attachments;
    for (const Attachment &attachment : message.attachments)
        attachments.append(recordOf(attachment));
    item.parts.attachments = attachments;
    item.parts.original = bytes;
    return item;
}

Message outgoingMessage(ItemContent &item, const Profile &profile) {
    const ItemRecord &fields = item.fields();
    Message message;
    message.subject = fields.subject;
    const Address own{profile.user(), profile.address()};
    message.from = own;
    if (!fields.sentOnBehalfOf.isEmpty()) {
        const Address other = parseAddresses(fields.sentOnBehalfOf).value(0);
        if (other.address.contains(u'@') && other.address != own.address) {
            message.from = other;
            message.sender = own;
        } else {
            message.from.name = other.display();
        }
    } else if (!fields.senderAddress.isEmpty()) {
        message.from = senderOf(fields);
    }
    for (const Address &address : parseAddresses(fields.replyRecipientNames)) {
        if (address.address.contains(u'@'))
            message.replyTo.append(address);
    }
    message.to = parseAddresses(fields.to);
    message.cc = parseAddresses(fields.cc);
    message.bcc = parseAddresses(fields.bcc);
    if (!fields.sentAt.isZero())
        message.sentAt = fields.sentAt.toQt();
    message.importance = static_cast<Importance>(fields.importance);
    message.sensitivity = static_cast<Sensitivity>(fields.sensitivity);
    message.readReceiptRequested = fields.readReceiptRequested;
    message.messageId = fields.messageId;
    message.inReplyTo = fields.inReplyTo.split(u' ', Qt::SkipEmptyParts);
    message.references = fields.references.split(u' ', Qt::SkipEmptyParts);
    message.text = item.bodies().plain;
    if (fields.bodyFormat != 1)
        message.html = item.bodies().html;
    for (const ItemContent::AttachmentPtr &record : item.attachments()) {
        Attachment attachment;
        attachment.type = static_cast<AttachmentType>(record->type);
        if (!record->mimeType.isEmpty())
            attachment.mimeType = record->mimeType;
        // A name to show that is no name of the file would cost the file its extension.
        attachment.name = record->displayName;
        if (safeFileName(attachment) != record->fileName)
            attachment.name = record->fileName;
        attachment.contentId = record->contentId;
        attachment.isInline = !record->contentId.isEmpty();
        attachment.data = item.attachmentData(*record);
        message.attachments.append(attachment);
    }
    return message;
}

QByteArray messageBytes(ItemContent &item, const Profile &profile) {
    const QByteArray original = item.original();
    if (!original.isEmpty() && stillSays(item, incomingItem(original)))
        return original;
    Message message = outgoingMessage(item, profile);
    const ItemRecord &fields = item.fields();
    // Whoever wrote it, not whose desk it lies on.
    if (!fields.senderAddress.isEmpty() && fields.senderAddress != profile.address()) {
        message.from = senderOf(fields);
        message.sender = {};
    }
    return composeMessage(message);
}

IncomingItem openedItem(const QByteArray &bytes) {
    IncomingItem item = incomingItem(bytes);
    item.fields.sent = item.fields.unread = false;
    item.fields.receivedAt = {};
    return item;
}

namespace {
/// Where the quoted text that opens at a position closes, -1 where it does not.
qsizetype closingQuote(const QString &text, qsizetype open) {
    for (qsizetype at = open + 1; at < text.size(); ++at) {
        if (text[at] == u'\\')
            ++at;
        else if (text[at] == u'"')
            return at;
    }
    return -1;
}

QString unquoted(const QString &quoted) {
    QString text;
    for (qsizetype at = 1; at < quoted.size() - 1; ++at) {
        at += quoted[at] == u'\\' && at + 2 < quoted.size() ? 1 : 0;
        text += quoted[at];
    }
    return text;
}
} // namespace

QList<Address> parseAddresses(const QString &text) {
    QList<Address> addresses;
    QString name;
    QString address;
    bool isAngled = false;
    bool isOpenQuote = false;
    const auto finish = [&] {
        name = name.simplified();
        address = address.trimmed();
        if (address.isEmpty())
            std::swap(name, address);
        if (!address.isEmpty())
            addresses.append({name, address});
        name.clear();
        address.clear();
        isAngled = false;
    };
    for (qsizetype at = 0; at < text.size(); ++at) {
        const QChar letter = text[at];
        // A search that failed is not made again.
        const qsizetype close = letter == u'"' && !isOpenQuote ? closingQuote(text, at) : -1;
        isOpenQuote = isOpenQuote || (letter == u'"' && close < 0);
        if (close >= 0) {
            const bool isOfAddress = isAngled || text.mid(close + 1, 1) == u"@";
            const QString quoted = text.mid(at, close + 1 - at);
            (isAngled ? address : name) += isOfAddress ? quoted : unquoted(quoted);
            at = close;
        } else if (letter == u'<')
            isAngled = true;
        else if (letter == u'>')
            isAngled = false;
        else if (letter == u';' || (letter == u',' && (name.contains(u'@') || !address.isEmpty())))
            finish();
        else
            (isAngled ? address : name) += letter;
    }
    finish();
    return addresses;
}

QString nativePath(const QString &path) { return QString(path).replace(u'\\', u'/'); }

void writeFile(const QString &path, const QByteArray &bytes) {
    QSaveFile file(nativePath(path));
    // A disk that fills up takes a part first, and tells why it takes no more when it is asked again.
    const auto writeAll = [&] {
        qint64 written = 0;
        for (qint64 count = 1; count > 0 && written < bytes.size(); written += count)
            count = file.write(bytes.constData() + written, bytes.size() - written);
        return written == bytes.size();
    };
    if (!file.open(QIODevice::WriteOnly) || !writeAll() || !file.commit())
        throw writeFailure(path, file);
}

QByteArray readFile(const QString &path) {
    QFile file(nativePath(path));
    if (!file.exists() || QFileInfo(file).isDir())
        throw Failure(failures::fileNotFound, QStringLiteral("There is no file %1.").arg(path));
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(failures::permissionDenied, QStringLiteral("%1 can't be read: %2").arg(path, file.errorString()));
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw Failure(failures::permissionDenied, QStringLiteral("%1 can't be read: %2").arg(path, file.errorString()));
    return bytes;
}

} // namespace desk

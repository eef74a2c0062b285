/// Mail as the desk sees it: an Internet message read into plain fields, and such fields written as a message.
///
/// This folder knows the formats of mail and nothing of folders or items: message.h has the record, parser.h and
/// composer.h turn bytes into it and back, source.h reads messages from files, html.h goes between HTML and plain text.
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

namespace desk {

/// One mailbox. The name is decoded and never quoted; it is empty when the message gave none. The address is what stood
/// there, even when it is no valid address.
struct Address {
    QString name;
    QString address;

    [[nodiscard]] bool isEmpty() const { return name.isEmpty() && address.isEmpty(); }
    /// The name, or the address where there is no name.
    [[nodiscard]] QString display() const { return name.isEmpty() ? address : name; }

    friend bool operator==(const Address &, const Address &) = default;
};

/// The numbers are those of the object model.
enum class Importance { Low = 0, Normal = 1, High = 2 };
enum class Sensitivity { Normal = 0, Personal = 1, Private = 2, Confidential = 3 };
enum class AttachmentType { ByValue = 1, EmbeddedMessage = 5, Ole = 6 };

/// One attachment, its data decoded. For an embedded message the data are the message's own bytes, to be read with
/// parseMessage.
struct Attachment {
    AttachmentType type = AttachmentType::ByValue;
    /// The name to show, as the sender gave it: it may be empty, hold a path or be the same as another's. Holds no
    /// control characters. Pass it through safeFileName before it becomes a file.
    QString name;
    /// In lower case, such as "image/png"; never empty.
    QString mimeType = "application/octet-stream";
    /// The character set of a text, as the sender named it; often empty.
    QString charset;
    /// Without angle brackets; what "cid:" links in the HTML body name.
    QString contentId;
    /// Meant to be seen inside the body, not beside it.
    bool isInline = false;
    QByteArray data;

    friend bool operator==(const Attachment &, const Attachment &) = default;
};

/// A message. Texts are Unicode, whatever the message used. Header texts are one line without control characters and
/// without blanks at the ends. The bodies' lines end in CR LF. No text holds a NUL.
struct Message {
    QString subject;
    /// Who wrote it ("From").
    Address from;
    /// Who sent it in the writer's place ("Sender"); empty when it is the writer.
    Address sender;
    QList<Address> replyTo;
    QList<Address> to;
    QList<Address> cc;
    QList<Address> bcc;

    /// When it was sent, in the sender's own offset from UTC; invalid when the message does not say or nobody can tell
    /// what it says. toUTC() and toLocalTime() give the other views.
    QDateTime sentAt;

    Importance importance = Importance::Normal;
    Sensitivity sensitivity = Sensitivity::Normal;
    bool readReceiptRequested = false;

    /// Identifiers, without angle brackets.
    QString messageId;
    QStringList inReplyTo;
    QStringList references;

    /// The plain body; empty in a message that has only HTML (see bodyText).
    QString text;
    /// The HTML body; empty in a message that has none.
    QString html;

    QList<Attachment> attachments;

    friend bool operator==(const Message &, const Message &) = default;

    /// What a reader of plain text sees: the plain body, or the HTML body's text where there is no other.
    [[nodiscard]] QString bodyText() const;
};

/// The name that an attachment can be stored under in a folder: the last component of a path in either style, without
/// characters that a file system refuses, never empty, never a device's name, at most 200 characters and 240 bytes
/// with its extension kept. A missing name is made from the type ("attachment.png", "message.eml").
QString safeFileName(const Attachment &attachment);

} // namespace desk

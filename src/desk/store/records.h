/// The records of a message store: what a folder, an item and its parts are made of, as plain data. Every member has a
/// first value, so that a record is written with the members that matter.
///
/// Numbers are those of the object model. Texts may hold any UTF-16 text whatever, halves of surrogate pairs included,
/// and come back as they were.
#pragma once

#include "platform/value/datetime.h"
#include "platform/value/value.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace desk {

/// Numbers of folders and items within their store. Never reused, 0 is none.
using FolderId = qint64;
using ItemId = qint64;

/// What a folder is to the mailbox; the numbers of the default folders.
enum class SpecialFolder : int {
    None = 0,
    DeletedItems = 3,
    Outbox = 4,
    SentItems = 5,
    Inbox = 6,
    Calendar = 9,
    Contacts = 10,
    Tasks = 13,
    Drafts = 16
};

struct FolderRecord {
    FolderId id = 0;
    /// 0 for the store's root.
    FolderId parent = 0;
    /// 48 hexadecimal characters; made by the store.
    QString entryId{};

    QString name{};
    /// The kind of items that are made here by default: 0 mail, 1 appointment, 2 contact, 3 task, 6 post.
    qint32 defaultItemType = 0;
    QString homePageUrl{};
    bool homePageOn = false;
    SpecialFolder special = SpecialFolder::None;

    friend bool operator==(const FolderRecord &, const FolderRecord &) = default;
};

/// How many items stand in a folder itself, and how many of them are unread.
struct FolderCounts {
    qint64 items = 0;
    qint64 unread = 0;

    friend bool operator==(const FolderCounts &, const FolderCounts &) = default;
};

struct CountedFolder {
    FolderRecord folder{};
    FolderCounts counts{};
    bool hasChildren = false;

    friend bool operator==(const CountedFolder &, const CountedFolder &) = default;
};

/// One item's standard fields. The fields marked "indexed" are found among a million without a walk.
struct ItemRecord {
    // Kept by the store: what a caller writes here is not saved.
    ItemId id = 0;
    FolderId folder = 0;
    /// 48 hexadecimal characters. The same for as long as the item stays in its store.
    QString entryId{};
    /// Grows by one with every save and move; what the optimistic check compares.
    qint64 version = 0;
    /// The item's place in the order of arrival of its store. A move into a folder is an arrival.
    qint64 arrival = 0;
    /// In bytes: the original message, or the bodies and attachments where these are more.
    qint64 size = 0;
    qint32 attachmentCount = 0;
    /// The moment of the last save.
    DateTime modifiedAt{};

    // Any item.
    QString messageClass{}; ///< indexed
    QString subject{};      ///< indexed
    qint32 importance = 1;
    qint32 sensitivity = 0;
    bool unread = false;
    QString billingInformation{}; ///< indexed
    QString categories{};
    qint32 flagStatus = 0;
    QString flagRequest{};
    /// 0 unspecified, 1 plain, 2 HTML, 3 rich text.
    qint32 bodyFormat = 0;
    /// The moment of the first save, unless the caller gives another.
    DateTime createdAt{};

    // Mail and posts.
    QString senderName{}; ///< indexed
    QString senderAddress{};
    /// "SMTP", or "EX" for a person of this host's own directory.
    QString senderAddressType{};
    QString sentOnBehalfOf{};
    QString replyRecipientNames{};
    QString to{};
    QString cc{};
    QString bcc{};
    bool readReceiptRequested = false;
    /// Sent or posted; false for a draft.
    bool sent = false;
    DateTime sentAt{};
    DateTime receivedAt{};
    /// Entry identifier of the folder that takes the sent copy; empty for the default one.
    QString saveSentFolder{};
    QString messageId{};
    QString inReplyTo{};
    /// Identifiers of the thread, parted by blanks.
    QString references{};

    // Contacts.
    QString fullName{};      ///< indexed
    QString email1Address{}; ///< indexed
    QString businessTelephone{};
    QString company{};
    QString department{};

    // Tasks and appointments.
    DateTime startAt{};
    DateTime dueAt{};
    qint32 taskStatus = 0;
    qint32 percentComplete = 0;
    QString owner{};
    QString location{};

    friend bool operator==(const ItemRecord &, const ItemRecord &) = default;
};

/// The standard fields by name, for conditions.
enum class Field {
    MessageClass,
    Subject,
    Importance,
    Sensitivity,
    Unread,
    BillingInformation,
    Categories,
    FlagStatus,
    FlagRequest,
    BodyFormat,
    CreatedAt,
    SenderName,
    SenderAddress,
    SenderAddressType,
    SentOnBehalfOf,
    ReplyRecipientNames,
    To,
    Cc,
    Bcc,
    ReadReceiptRequested,
    Sent,
    SentAt,
    ReceivedAt,
    SaveSentFolder,
    MessageId,
    InReplyTo,
    References,
    FullName,
    Email1Address,
    BusinessTelephone,
    Company,
    Department,
    StartAt,
    DueAt,
    TaskStatus,
    PercentComplete,
    Owner,
    Location
};

struct Bodies {
    QString plain{};
    QString html{};

    friend bool operator==(const Bodies &, const Bodies &) = default;
};

enum class PropertyType : int { Text = 1, Number = 3, Date = 5, YesNo = 6 };

/// One typed custom property. An item has one of a name, whatever its case.
struct Property {
    QString name{};
    PropertyType type = PropertyType::Text;
    /// As the type says: text, double, date-time or boolean; Empty for a property that was never given a value. Other
    /// kinds of number are kept as double.
    Value value{};

    friend bool operator==(const Property &, const Property &) = default;
};

/// One attachment; its order in the item is its place in the list. In `ItemParts`, id 0 is a new one and brings its
/// data, any other id is one that stands, whose data are left alone.
struct AttachmentRecord {
    qint64 id = 0;
    /// 1 by value, 5 embedded item, 6 OLE object.
    qint32 type = 1;
    QString fileName{};
    QString displayName{};
    QString mimeType{};
    QString contentId{};
    /// In bytes; kept by the store.
    qint64 size = 0;
    /// For a new attachment alone: a read leaves it empty (see `Store::attachmentData`).
    QByteArray data{};

    friend bool operator==(const AttachmentRecord &, const AttachmentRecord &) = default;
};

/// The parts of an item beside its fields, for a save. A part that is not given stays as it stands; one that is given
/// replaces all that stands of it, and only what differs is written.
struct ItemParts {
    std::optional<Bodies> bodies{};
    std::optional<QList<Property>> properties{};
    std::optional<QList<AttachmentRecord>> attachments{};
    /// The message as it came, byte for byte.
    std::optional<QByteArray> original{};
};

/// A field or custom property that equals a value. Texts are compared without regard to case in any alphabet, dates to
/// the second. A number, date or boolean of the item also equals the text that writes it ("12", "1.5", "true",
/// "2026-11-22 09:30:00"). The empty text is met by an empty field or property and by a missing property.
struct Condition {
    enum class Kind {
        Equal,
        /// Of custom properties: leaves out the missing ones and those that begin with a number below `value`, or with
        /// none where that is above 0. What is left still has to be compared.
        MayReach
    };

    /// Names a field or, by text, a custom property.
    std::variant<Field, QString> subject;
    Value value{};
    Kind kind = Kind::Equal;
};

} // namespace desk

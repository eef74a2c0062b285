/// What mail and posts have in common: somebody wrote them to others.
#pragma once

#include "desk/objects/item.h"

namespace desk::objects {

/// What mail and posts have in common.
class MessageItem : public Item {
    Q_OBJECT
    Q_PROPERTY(QString To READ to WRITE setTo)
    Q_PROPERTY(QString CC READ cc WRITE setCc)
    Q_PROPERTY(QString BCC READ bcc WRITE setBcc)
    Q_PROPERTY(QString SenderName READ senderName)
    Q_PROPERTY(QString SenderEmailAddress READ senderEmailAddress)
    Q_PROPERTY(QString SenderEmailType READ senderEmailType)
    Q_PROPERTY(Value Sender READ sender)
    Q_PROPERTY(QString SentOnBehalfOfName READ sentOnBehalfOfName WRITE setSentOnBehalfOfName)
    Q_PROPERTY(QString ReplyRecipientNames READ replyRecipientNames WRITE setReplyRecipientNames)
    Q_PROPERTY(bool ReadReceiptRequested READ readReceiptRequested WRITE setReadReceiptRequested)
    Q_PROPERTY(Value SaveSentMessageFolder READ saveSentMessageFolder WRITE setSaveSentMessageFolder)
    Q_PROPERTY(int FlagStatus READ flagStatus WRITE setFlagStatus)
    Q_PROPERTY(QString FlagRequest READ flagRequest WRITE setFlagRequest)
    Q_PROPERTY(DateTime ReceivedTime READ receivedTime)
    Q_PROPERTY(DateTime SentOn READ sentOn)
    Q_PROPERTY(bool Sent READ sent)

  public:
    using Item::Item;

    [[nodiscard]] QString to() const { return fields().to; }
    void setTo(const QString &value) { put(&ItemRecord::to, value, "To"); }
    [[nodiscard]] QString cc() const { return fields().cc; }
    void setCc(const QString &value) { put(&ItemRecord::cc, value, "CC"); }
    [[nodiscard]] QString bcc() const { return fields().bcc; }
    void setBcc(const QString &value) { put(&ItemRecord::bcc, value, "BCC"); }
    [[nodiscard]] QString senderName() const { return fields().senderName; }
    [[nodiscard]] QString senderEmailAddress() const { return fields().senderAddress; }
    [[nodiscard]] QString senderEmailType() const { return fields().senderAddressType; }
    /// An address entry; Nothing for an item that nobody has sent.
    [[nodiscard]] Value sender() const;
    [[nodiscard]] QString sentOnBehalfOfName() const { return fields().sentOnBehalfOf; }
    void setSentOnBehalfOfName(const QString &value) { put(&ItemRecord::sentOnBehalfOf, value, "SentOnBehalfOfName"); }
    [[nodiscard]] QString replyRecipientNames() const { return fields().replyRecipientNames; }
    void setReplyRecipientNames(const QString &value) {
        put(&ItemRecord::replyRecipientNames, value, "ReplyRecipientNames");
    }
    [[nodiscard]] bool readReceiptRequested() const { return fields().readReceiptRequested; }
    void setReadReceiptRequested(bool value) { put(&ItemRecord::readReceiptRequested, value, "ReadReceiptRequested"); }
    /// The folder that takes the sent copy; the default one where none was set.
    [[nodiscard]] Value saveSentMessageFolder() const;
    void setSaveSentMessageFolder(const Value &folder);
    [[nodiscard]] int flagStatus() const { return fields().flagStatus; }
    void setFlagStatus(int value) { put(&ItemRecord::flagStatus, value, "FlagStatus"); }
    [[nodiscard]] QString flagRequest() const { return fields().flagRequest; }
    void setFlagRequest(const QString &value) { put(&ItemRecord::flagRequest, value, "FlagRequest"); }
    [[nodiscard]] DateTime receivedTime() const { return fields().receivedAt; }
    [[nodiscard]] DateTime sentOn() const { return fields().sentAt; }
    [[nodiscard]] bool sent() const { return fields().sent; }

  protected:
    /// Names the mailbox's own person as who wrote the item, at this moment. `receivedAt` is when it was there to read.
    void sign(DateTime receivedAt);
};

} // namespace desk::objects

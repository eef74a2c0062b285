#include "desk/objects/mailitem.h"

#include "desk/mail/composer.h"
#include "desk/objects/addressentry.h"
#include "desk/objects/application.h"
#include "desk/objects/itemmessage.h"
#include "desk/objects/mapifolder.h"
#include "desk/objects/session.h"

namespace desk::objects {

Value MessageItem::sender() const {
    const ItemRecord &item = fields();
    if (item.senderName.isEmpty() && item.senderAddress.isEmpty())
        return Value::nothing();
    return automation::wrap(
        AddressEntry::ofSender(weakSession(), item.senderName, item.senderAddress, item.senderAddressType));
}

Value MessageItem::saveSentMessageFolder() const {
    const std::shared_ptr<desk::Session> open = session();
    const QString &entryId = fields().saveSentFolder;
    if (Store *place = open->storeOf(entryId)) {
        if (const auto folder = place->folderByEntryId(entryId))
            return automation::wrap(open->folder(*place, folder->id));
    }
    const FolderRecord sentItems = open->specialFolder(SpecialFolder::SentItems);
    return automation::wrap(open->folder(open->mailbox(), sentItems.id));
}

void MessageItem::setSaveSentMessageFolder(const Value &folder) {
    const auto chosen = automation::exposedOf<MAPIFolder>(folder);
    put(&ItemRecord::saveSentFolder, chosen ? chosen->entryId() : QString(), "SaveSentMessageFolder");
}

void MessageItem::sign(DateTime receivedAt) {
    const std::shared_ptr<desk::Session> open = session();
    const Profile &profile = open->profile();
    ItemContent &item = content();
    item.set(&ItemRecord::senderName, profile.user());
    item.set(&ItemRecord::senderAddress, profile.address());
    item.set(&ItemRecord::senderAddressType, QStringLiteral("SMTP"));
    item.set(&ItemRecord::sent, true);
    item.set(&ItemRecord::sentAt, Clock::now());
    item.set(&ItemRecord::receivedAt, receivedAt);
}

void MailItem::choosePlace() {
    const std::shared_ptr<desk::Session> open = session();
    if (!sent() && open->isIn(fields(), store(), SpecialFolder::Outbox))
        content().setFolder(open->specialFolder(SpecialFolder::Drafts).id);
}

void MailItem::Send() {
    const auto alive = shared_from_this();
    const std::shared_ptr<desk::Session> open = session();
    if (to().trimmed().isEmpty() && cc().trimmed().isEmpty() && bcc().trimmed().isEmpty())
        throw Failure(failures::invalidCall,
                      QStringLiteral("The message has no recipient. Enter a name or address in To, CC or BCC."));
    bool isCancelled = false;
    Q_EMIT ItemEvents::Send(&isCancelled);
    if (!isCancelled)
        Q_EMIT open->application()->ItemSend(automation::wrap(alive), &isCancelled);
    if (isCancelled)
        return;
    // The identifier is settled here, with the submission: a repeat after a crash is known by it.
    if (fields().messageId.isEmpty() || !sent())
        content().set(&ItemRecord::messageId, newMessageId(open->profile().address()));
    const FolderRecord outbox = open->specialFolder(SpecialFolder::Outbox);
    const bool isInOutbox = &store() == &open->mailbox() && fields().folder == outbox.id;
    if (!isInOutbox && !content().isNew())
        moveTo(open->mailbox(), outbox.id);
    sign({});
    if (content().isNew())
        moveTo(open->mailbox(), outbox.id);
    else
        commit();
    closeWindow();
}

Value MailItem::Reply() {
    const std::shared_ptr<desk::Session> open = session();
    const FolderRecord drafts = open->specialFolder(SpecialFolder::Drafts);
    const auto made =
        std::dynamic_pointer_cast<MailItem>(open->newItem(open->mailbox(), drafts.id, QStringLiteral("IPM.Note")));
    const QString prefix = QStringLiteral("RE: ");
    made->setSubject(subject().startsWith(prefix, Qt::CaseInsensitive) ? subject() : prefix + subject());
    made->setTo(replyRecipientNames().isEmpty() ? senderEmailAddress() : replyRecipientNames());
    ItemContent &reply = made->content();
    reply.set(&ItemRecord::inReplyTo, fields().messageId);
    reply.set(&ItemRecord::references, (fields().references + u' ' + fields().messageId).trimmed());
    return automation::wrap(made);
}

void PostItem::choosePlace() {
    if (!sent())
        sign(Clock::now());
}

void PostItem::Post() {
    const auto alive = shared_from_this();
    Save();
    closeWindow();
}

} // namespace desk::objects

#include "desk/objects/mailitem.h"

#include "desk/mail/composer.h"
#include "desk/objects/application.h"
#include "desk/objects/session.h"

namespace desk::objects {

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
    // What a received or opened message says of its writer is no wish to write on their behalf.
    if (!sentOnBehalfOfName().isEmpty() && sentOnBehalfOfName() == senderName())
        content().set(&ItemRecord::sentOnBehalfOf, QString());
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

} // namespace desk::objects

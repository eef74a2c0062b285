#include "desk/objects/mailitem.h"

#include "desk/mail/composer.h"
#include "desk/objects/application.h"
#include "desk/objects/inspector.h"
#include "desk/objects/openwindows.h"
#include "desk/objects/session.h"
#include "desk/transport/automaticmail.h"

namespace desk::objects {

void MailItem::choosePlace() {
    const std::shared_ptr<desk::Session> open = session();
    if (!sent() && open->isIn(fields(), store(), SpecialFolder::Outbox))
        content().setFolder(open->specialFolder(SpecialFolder::Drafts).id);
}

Value MailItem::answeredItem() const { return automation::wrap(m_answered); }

void MailItem::setAnsweredItem(const Value &item) {
    m_answered = automation::exposedOf<MessageItem>(item);
    if (m_answered)
        setAnswered(content(), m_answered->content());
}

void MailItem::Send() {
    const auto alive = shared_from_this();
    const std::shared_ptr<desk::Session> open = session();
    if (to().trimmed().isEmpty() && cc().trimmed().isEmpty() && bcc().trimmed().isEmpty())
        throw Failure(failures::invalidCall,
                      QStringLiteral("The message has no recipient. Enter a name or address in To, CC or BCC."));
    const std::shared_ptr<Inspector> window = open->windows().inspectorOf(*this);
    const bool isByPerson = window && window->isShown();
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
    setByProgram(content(), !isByPerson);
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
    setAnswered(made->content(), content());
    return automation::wrap(made);
}

} // namespace desk::objects

#include "desk/transport/automaticmail.h"

#include "desk/content/mailboxes.h"
#include "desk/mail/addresses.h"
#include "desk/store/correspondents.h"
#include "desk/transport/mailrules.h"
#include "platform/value/convert.h"

namespace desk {
namespace {

/// Of an address that a stranger chose.
constexpr qsizetype mostShown = 100;

QString textProperty(ItemContent &item, const QString &name) {
    const Property *property = item.findProperty(name);
    return property && property->value.isText() ? toText(property->value) : QString();
}

QString folderName(AutomaticKind kind) {
    switch (kind) {
    case AutomaticKind::Bounce:
        return QStringLiteral("Bounces");
    case AutomaticKind::Receipt:
        return QStringLiteral("Receipts");
    case AutomaticKind::OutOfOffice:
        return QStringLiteral("Out of office");
    case AutomaticKind::List:
        return QStringLiteral("Lists");
    case AutomaticKind::OwnMail:
        return QStringLiteral("Own mail");
    default:
        return QStringLiteral("Other");
    }
}

/// A folder that has its place by its name. Another process may make it at the same moment.
FolderRecord folderNamed(Store &store, FolderId parent, const QString &name) {
    for (;;) {
        if (const auto standing = store.findFolder(parent, name))
            return *standing;
        FolderRecord record;
        record.parent = parent;
        record.name = name;
        const auto failure = Attempt([&] { record = store.addFolder(record); });
        if (!failure)
            return record;
        if (failure->number() != failures::keyExists)
            throw Failure(*failure);
    }
}

QStringList recipientsOf(const Message &message) {
    QStringList all;
    for (const QList<Address> &list : {message.to, message.cc, message.bcc}) {
        for (const Address &address : list) {
            if (!all.contains(address.address, Qt::CaseInsensitive))
                all.append(address.address);
        }
    }
    return all;
}

AutomaticKind lastKind(Mailboxes &mailboxes, const QString &address) {
    const int shared = Correspondents(mailboxes.publicStore()).lastKind(address);
    return static_cast<AutomaticKind>(shared != 0 ? shared : Correspondents(mailboxes.mailbox()).lastKind(address));
}

/// The first of the addresses to which no more may go within this hour; nothing where the mail is counted for all.
std::optional<QString> fullAddress(Mailboxes &mailboxes, const QStringList &addresses, const Message &message,
                                   int most) {
    std::optional<QString> full;
    const auto count = [&](Store &store) {
        full = Correspondents(store).admit(addresses, message.messageId, most, Clock::now());
    };
    if (Attempt([&] { count(mailboxes.publicStore()); }))
        count(mailboxes.mailbox());
    return full;
}

/// What a recipient is called whom no mail can reach; nothing where all can be reached.
std::optional<QString> unreachable(const Message &message) {
    for (const QList<Address> &list : {message.to, message.cc, message.bcc}) {
        for (const Address &address : list) {
            if (!isReachable(address.address))
                return address.address.isEmpty() ? address.name : address.address;
        }
    }
    return std::nullopt;
}

/// Whether the mail would come back to whom it is from. The name to send under may be one that leads here, too.
bool isFrom(const QString &address, const Message &message, const OwnMail &own) {
    QStringList senders = own.addresses + QStringList{message.from.address, message.sender.address};
    for (const Address &replyTo : message.replyTo)
        senders.append(replyTo.address);
    return senders.contains(address, Qt::CaseInsensitive);
}

} // namespace

OwnMail ownMail(Mailboxes &mailboxes) {
    OwnMail own;
    own.addresses = mailRules(mailboxes.profile()).ownAddresses + QStringList{mailboxes.profile().address()};
    own.marks = QStringList{loopMark(mailboxes)};
    return own;
}

QString loopMark(Mailboxes &mailboxes) { return mailboxes.mailbox().storeId(); }

void rememberSender(Mailboxes &mailboxes, const QString &address, AutomaticKind kind) {
    const int number = static_cast<int>(kind);
    const bool isShared = !Attempt([&] { Correspondents(mailboxes.publicStore()).note(address, number); });
    Correspondents(mailboxes.mailbox()).note(address, isShared ? 0 : number);
}

FolderPlace folderFor(Mailboxes &mailboxes, AutomaticKind kind) {
    Store &mailbox = mailboxes.mailbox();
    const FolderRecord top = folderNamed(mailbox, mailbox.root().id, QStringLiteral("Automatic mail"));
    return {&mailbox, folderNamed(mailbox, top.id, folderName(kind))};
}

void setByProgram(ItemContent &item, bool isByProgram) {
    item.removeProperty(mailproperty::notSent);
    if (isByProgram)
        item.putProperty({mailproperty::byProgram, PropertyType::YesNo, true});
    else
        item.removeProperty(mailproperty::byProgram);
}

bool isByProgram(ItemContent &item) {
    const Property *property = item.findProperty(mailproperty::byProgram);
    return property && property->value.holds<bool>() && toBool(property->value);
}

void setAnswered(ItemContent &item, ItemContent &answered) {
    // Others' identifiers stand in a mail of this mailbox then: no more of them than a thread needs.
    constexpr qsizetype most = 20;
    constexpr qsizetype longest = 250;
    const ItemRecord &fields = answered.fields();
    QStringList thread = (fields.references + u' ' + fields.messageId).split(u' ', Qt::SkipEmptyParts);
    thread.removeIf([](const QString &id) { return id.size() > longest; });
    if (thread.size() > most)
        thread.remove(1, thread.size() - most);
    item.set(&ItemRecord::inReplyTo, fields.messageId.size() > longest ? QString() : fields.messageId);
    item.set(&ItemRecord::references, thread.join(u' '));
    const QString kind = textProperty(answered, mailproperty::automatic);
    if (kind.isEmpty())
        item.removeProperty(mailproperty::answersAutomatic);
    else
        item.putProperty({mailproperty::answersAutomatic, PropertyType::Text, kind});
}

QString reasonNotToSend(Mailboxes &mailboxes, ItemContent &item, const Message &message) {
    if (const auto nobody = unreachable(message))
        return QStringLiteral("No mail can go to \"%1\": it is no whole address, and no contact has that name.")
            .arg(nobody->left(mostShown));
    const OwnMail own = ownMail(mailboxes);
    const QStringList recipients = recipientsOf(message);
    for (const QString &address : recipients) {
        if (isFrom(address, message, own))
            return QStringLiteral("It would come back: %1 is an address that it is sent from.").arg(address);
        if (const AutomaticKind kind = lastKind(mailboxes, address); kind != AutomaticKind::None)
            return QStringLiteral("The last message from %1 was automatic (%2).").arg(address, nameOf(kind));
    }
    if (const QString kind = textProperty(item, mailproperty::answersAutomatic); !kind.isEmpty())
        return QStringLiteral("It answers an automatic message (%1).").arg(kind);
    const int most = mailRules(mailboxes.profile()).mostAnHour;
    const auto full = most == 0 ? std::nullopt : fullAddress(mailboxes, recipients, message, most);
    return full ? QStringLiteral("Within an hour programs have sent %1 mails to %2, and no more may go there.")
                      .arg(most)
                      .arg(*full)
                : QString();
}

void keepUnsent(Mailboxes &mailboxes, const ItemRecord &item, const QString &reason) {
    Store &mailbox = mailboxes.mailbox();
    const FolderRecord folder = folderNamed(mailbox, mailbox.root().id, QStringLiteral("Not sent"));
    ItemContent content(mailbox, item);
    content.putProperty({mailproperty::notSent, PropertyType::Text, reason});
    content.save();
    content.moveTo(mailbox, mailbox.move(content.fields(), folder.id));
    // A draft only now: what is none and lies in the Outbox is submitted.
    content.set(&ItemRecord::sent, false);
    content.save();
}

} // namespace desk

#include "desk/transport/transport.h"

#include "desk/content/directory.h"
#include "desk/content/itemmessage.h"
#include "desk/content/mailboxes.h"
#include "desk/mail/addresses.h"
#include "desk/mail/automatic.h"
#include "desk/mail/composer.h"
#include "desk/store/transfer.h"
#include "desk/transport/automaticmail.h"
#include "platform/value/filelock.h"

#include <QDir>
#include <QFile>

#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

namespace desk {
namespace {

/// The folder of what is being sent, in the one that the mail system picks up from. It is all but empty at any time,
/// where the other may hold thousands of messages.
const QString sendingName = QStringLiteral("/.sending");
const QString partSuffix = QStringLiteral(".part");

/// What has been submitted and not sent. A message that has come in has been received; moving it into the Outbox does
/// not send it again.
bool isSubmitted(const ItemRecord &item) { return item.sent && item.receivedAt.isZero(); }

/// A message identifier as a file name.
QString fileNameOf(const QString &messageId) {
    QString name;
    for (const QChar letter : messageId.left(180)) {
        const bool isPlain = letter.unicode() < 128 && letter.isLetterOrNumber();
        name += isPlain || letter == u'-' || letter == u'_' || letter == u'@' || (letter == u'.' && !name.isEmpty())
                    ? letter
                    : QChar(u'_');
    }
    return (name.isEmpty() ? QStringLiteral("message") : name) + QStringLiteral(".eml");
}

QStringList filesIn(const QString &folder) {
    QStringList names;
    std::error_code error;
    for (const auto &entry : std::filesystem::directory_iterator(QFile::encodeName(folder).toStdString(), error))
        names << QFile::decodeName(entry.path().filename().c_str());
    return names;
}

void syncFolder(const QString &folder) {
    const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    ::fsync(descriptor);
    ::close(descriptor);
}

} // namespace

int Transport::deliverNow() {
    Store &mailbox = m_mailboxes.mailbox();
    const auto outbox = mailbox.specialFolder(SpecialFolder::Outbox);
    const QString folder = m_mailboxes.profile().outgoingFolder();
    const QString sending = folder + sendingName;
    if (filesIn(sending).isEmpty() && (!outbox || mailbox.count(outbox->id) == 0))
        return 0;
    constexpr auto ownersAlone = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    for (const QString &each : {folder, sending})
        QDir().mkdir(each, ownersAlone);
    if (!QDir(sending).exists())
        throw Failure(failures::pathNotFound, QStringLiteral("The folder %1 can't be made.").arg(sending));
    auto lock = FileLock::take(folder + QStringLiteral("/.lock"));
    if (!lock)
        return 0;
    settle(folder);
    int sent = 0;
    std::optional<Failure> firstFailure;
    qint64 arrival = 0;
    while (outbox) {
        const QList<ItemRecord> waiting = mailbox.itemsArrivedAfter(outbox->id, arrival, 1);
        if (waiting.isEmpty())
            break;
        const ItemRecord &item = waiting.first();
        arrival = item.arrival;
        if (!isSubmitted(item))
            continue;
        const std::optional<Failure> failure = Attempt([&] { sent += send(folder, item) ? 1 : 0; });
        if (failure && !firstFailure)
            firstFailure = failure;
    }
    lock.reset();
    m_moved();
    if (firstFailure)
        throw Failure(*firstFailure);
    return sent;
}

void Transport::settle(const QString &folder) {
    const QString sending = folder + sendingName;
    const QStringList files = filesIn(sending);
    if (files.isEmpty())
        return;
    for (const QString &name : files) {
        const QString path = sending + u'/' + name;
        const QString entryId = name.chopped(std::min(name.size(), partSuffix.size()));
        const auto item = m_mailboxes.mailbox().itemByEntryId(entryId);
        const bool isWhole = name.endsWith(partSuffix);
        if (!isWhole || (item && m_mailboxes.isIn(*item, m_mailboxes.mailbox(), SpecialFolder::Outbox)))
            QFile::remove(path);
        else
            QFile::rename(path, folder + u'/' + fileNameOf(item ? item->messageId : entryId));
    }
    syncFolder(sending);
    syncFolder(folder);
}

bool Transport::send(const QString &folder, const ItemRecord &item) {
    Store &mailbox = m_mailboxes.mailbox();
    ItemContent content(mailbox, item);
    Message message = outgoingMessage(content, m_mailboxes.profile());
    for (QList<Address> *list : {&message.to, &message.cc, &message.bcc}) {
        for (Address &address : *list) {
            if (address.address.contains(u'@')) {
                address.address = withPlainDomain(address.address);
                continue;
            }
            if (const auto contact = m_mailboxes.directory().contactByName(address.address))
                address = {contact->fullName, contact->email1Address};
        }
    }
    QByteArray furtherHeaders;
    if (isByProgram(content)) {
        if (const QString reason = reasonNotToSend(m_mailboxes, content, message); !reason.isEmpty()) {
            keepUnsent(m_mailboxes, item, reason);
            return false;
        }
        // A crash may have left the reason of an earlier judgement.
        content.removeProperty(mailproperty::notSent);
        if (content.isChanged())
            content.save();
        furtherHeaders = automaticHeaders(!message.inReplyTo.isEmpty(), loopMark(m_mailboxes));
    }
    const QString part = folder + sendingName + u'/' + item.entryId + partSuffix;
    writeFile(part, composeMessage(message, furtherHeaders));
    syncFolder(folder + sendingName);

    const FolderRecord sentItems = m_mailboxes.specialFolder(SpecialFolder::SentItems);
    std::optional<ItemRecord> moved;
    const std::optional<Failure> failure = Attempt([&] { moved = mailbox.move(item, sentItems.id); });
    if (failure) {
        QFile::remove(part);
        throw Failure(*failure);
    }
    const QString target = folder + u'/' + fileNameOf(item.messageId);
    QFile::remove(target);
    if (!QFile::rename(part, target))
        throw Failure(failures::permissionDenied, QStringLiteral("%1 can't be renamed to %2.").arg(part, target));
    syncFolder(folder);
    fileSent(*moved);
    return true;
}

void Transport::fileSent(const ItemRecord &item) {
    Store &mailbox = m_mailboxes.mailbox();
    ItemRecord filed = item;
    filed.receivedAt = Clock::now();
    filed.unread = false;
    filed = mailbox.save(filed);
    Store *store = m_mailboxes.storeOf(item.saveSentFolder);
    if (!store)
        return;
    const auto folder = store->folderByEntryId(item.saveSentFolder);
    if (!folder)
        return;
    if (store == &mailbox)
        mailbox.move(filed, folder->id);
    else
        moveBetween(mailbox, filed, *store, folder->id);
}

} // namespace desk

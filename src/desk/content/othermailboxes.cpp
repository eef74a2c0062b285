#include "desk/content/othermailboxes.h"

#include "desk/content/mailboxes.h"
#include "desk/store/transfer.h"
#include "platform/value/failure.h"

#include <QFileInfo>

namespace desk {

QString personOf(const QString &rootName) {
    return rootName.startsWith(mailboxPrefix) ? rootName.mid(mailboxPrefix.size()).trimmed() : QString();
}

std::unique_ptr<Store> openMailbox(const QString &file) {
    const QFileInfo info(file);
    if (!info.exists())
        throw Failure(failures::notFound,
                      QStringLiteral("There is no mailbox %1, or you may not look into its folder.").arg(file));
    if (!info.isFile() || info.size() == 0)
        throw Failure(failures::invalidCall, QStringLiteral("%1 is no mailbox: name the file mailbox.store of the "
                                                            "other person's profile.")
                                                 .arg(file));
    const QFileInfo target(info.canonicalFilePath());
    if (!target.isReadable())
        throw Failure(
            failures::accessDenied,
            QStringLiteral("You may not read the mailbox %1. Ask for the right to read and write it.").arg(file));
    // The engine keeps its log beside the file.
    if (!target.isWritable() || !QFileInfo(target.absolutePath()).isWritable())
        throw Failure(failures::accessDenied, QStringLiteral("The mailbox %1 may only be read. To open it you need "
                                                             "the right to write to the file and to its folder.")
                                                  .arg(file));
    StoreOptions options;
    options.create = false;
    auto store = std::make_unique<Store>(file, options);
    if (personOf(store->root().name).isEmpty())
        throw Failure(
            failures::invalidCall,
            QStringLiteral("%1 is a store but no mailbox: its top folder is \"%2\".").arg(file, store->root().name));
    return store;
}

OtherMailboxes::OtherMailboxes(Mailboxes &mailboxes) : m_mailboxes(mailboxes), m_list(mailboxes.profile()) {}

QList<Store *> OtherMailboxes::stores() const {
    QList<Store *> stores;
    for (const Open &each : m_open)
        stores.append(each.store.get());
    return stores;
}

void OtherMailboxes::open(const QString &file) {
    std::unique_ptr<Store> store = openMailbox(file);
    const QList<Store *> standing = m_mailboxes.stores();
    for (const Store *other : standing) {
        if (other->tag() == store->tag())
            throw Failure(
                failures::keyExists,
                QStringLiteral("The mailbox %1 is %2 or a copy of it; only one can be open.").arg(file, other->path()));
    }
    for (Store *other : standing)
        settleTransfers(*store, *other);
    m_open.push_back({file, std::move(store)});
}

void OtherMailboxes::look() {
    const QString mark = m_list.mark();
    if (mark == m_mark)
        return;
    m_mark.clear();
    QStringList problems;
    for (const QString &file : m_list.files()) {
        const bool isOpen = std::ranges::any_of(m_open, [&](const Open &each) { return each.file == file; });
        if (isOpen)
            continue;
        if (const std::optional<Failure> failure = Attempt([&] { open(file); }))
            problems.append(failure->description());
    }
    if (!problems.isEmpty())
        throw Failure(failures::notFound, problems.join(u' '));
    m_mark = mark;
}

} // namespace desk

#include "desk/store/transfer.h"

#include "desk/store/connection.h"
#include "desk/store/folderorder.h"
#include "desk/store/itemreader.h"
#include "desk/store/itemwriter.h"
#include "desk/store/statements.h"
#include "desk/store/transferlock.h"
#include "platform/value/failure.h"

#include <QRandomGenerator>

namespace desk {

namespace {

constexpr int transferBytes = 16;
/// An item that others save while it is being copied is copied anew, at most so often.
constexpr int mostAttempts = 20;

QByteArray newTransferNumber() {
    QByteArray number(transferBytes, Qt::Uninitialized);
    for (char &byte : number)
        byte = static_cast<char>(QRandomGenerator::system()->generate() & 0xFF);
    return number;
}

/// An item with all its parts, ready to be new elsewhere.
struct WholeItem {
    ItemRecord record;
    ItemParts parts;
};

} // namespace

/// The steps of a move between two stores; each writes one transaction.
class Transfer {
  public:
    Transfer(Store &source, Store &target) : m_source(source), m_target(target) {}

    ItemRecord move(const ItemRecord &item, FolderId folder);
    ItemRecord copy(ItemId id, FolderId folder);
    int settle();

  private:
    /// A hidden copy in the target.
    struct Incoming {
        ItemId item = 0;
        QByteArray number;
    };

    Connection &source() { return *m_source.m_connection; }
    Connection &target() { return *m_target.m_connection; }

    WholeItem read(ItemId id);
    void requireFolder(FolderId folder);
    Incoming placeHiddenCopy(const WholeItem &item, FolderId folder, TransferLock &lock);
    bool takeFromSource(const WholeItem &item, const ItemRecord &expected, const Incoming &incoming);
    ItemRecord reveal(const Incoming &incoming);
    void drop(const Incoming &incoming);
    void dropForGood(const Incoming &incoming);
    void forget(const QByteArray &number);
    bool settleOne(const Incoming &incoming, TransferLock &lock);
    void forgetSettled();

    Store &m_source;
    Store &m_target;
};

/// Reads the item as one commit left it.
WholeItem Transfer::read(ItemId id) {
    Transaction reading(source(), Transaction::Kind::Read);
    WholeItem item{.record = m_source.standingItem(id), .parts = {}};
    item.parts.bodies = readBodies(source(), id);
    item.parts.properties = readProperties(source(), id);
    item.parts.original = readOriginal(source(), id);
    QList<AttachmentRecord> attachments = readAttachments(source(), id);
    for (AttachmentRecord &attachment : attachments)
        attachment.data = readAttachmentData(source(), std::exchange(attachment.id, 0));
    item.parts.attachments = attachments;
    reading.commit();
    return item;
}

void Transfer::requireFolder(FolderId folder) {
    if (!target().value(sql::removals, {{"id", folder}}))
        throw Failure(failures::notFound,
                      QStringLiteral("The folder to put the item into no longer exists; choose another folder."));
}

Transfer::Incoming Transfer::placeHiddenCopy(const WholeItem &item, FolderId folder, TransferLock &lock) {
    Transaction transaction(target());
    requireFolder(folder);
    Incoming incoming{.item = takeNumbers(target()), .number = newTransferNumber()};
    // Nobody else can know of this number yet, so the byte is free.
    if (!lock.take(incoming.item))
        throw Failure(failures::unspecified,
                      QStringLiteral("The store %1 takes no items, since its folder supports no locks; put it on "
                                     "another disk.")
                          .arg(m_target.path()));
    insertItem(target(), {.id = incoming.item, .folder = std::nullopt, .arrival = incoming.item}, item.record,
               item.parts);
    target().run(
        sql::noteIncoming,
        {{"item", incoming.item}, {"transfer", incoming.number}, {"source", m_source.tag()}, {"folder", folder}});
    transaction.commit();
    return incoming;
}

/// False when the item was saved since it was read: then nothing has happened.
bool Transfer::takeFromSource(const WholeItem &item, const ItemRecord &expected, const Incoming &incoming) {
    Transaction transaction(source());
    const std::optional<ItemRecord> standing = m_source.item(expected.id);
    if (!standing || standing->folder != expected.folder)
        throw Failure(failures::itemGone,
                      QStringLiteral("The item was deleted or moved away by somebody else; look for it again."));
    if (standing->version != item.record.version)
        return false;
    const qint64 removals = removeStanding(source(), expected.id, expected.folder);
    source().run(sql::noteOutgoing, {{"transfer", incoming.number}, {"target", m_target.tag()}});
    transaction.commit();
    m_source.m_order->removed(expected.folder, standing->arrival, removals);
    return true;
}

/// Gives the copy its folder, or the root where that was removed meanwhile.
ItemRecord Transfer::reveal(const Incoming &incoming) {
    Transaction transaction(target());
    FolderId folder = target().value(sql::incomingFolder, {{"item", incoming.item}}).value_or(0).toLongLong();
    if (!target().value(sql::removals, {{"id", folder}}))
        folder = m_target.root().id;
    const qint64 arrival = takeNumbers(target());
    target().run(sql::revealItem, {{"folder", folder}, {"arrival", arrival}, {"id", incoming.item}});
    target().run(sql::placeProperties, {{"folder", folder}, {"arrival", arrival}, {"id", incoming.item}});
    target().run(sql::dropIncoming, {{"item", incoming.item}});
    ItemRecord revealed = m_target.standingItem(incoming.item);
    transaction.commit();
    m_target.m_order->added();
    return revealed;
}

void Transfer::drop(const Incoming &incoming) {
    Transaction transaction(target());
    target().run(sql::removeItem, {{"id", incoming.item}});
    transaction.commit();
}

/// Drops a copy whose item seems to stand in the source still. A commit that failed half-way could come back to life
/// when the source's log is read after a crash, and the item would be lost. A commit after it buries it.
void Transfer::dropForGood(const Incoming &incoming) {
    {
        Transaction transaction(source());
        if (source().value(sql::isOutgoing, {{"transfer", incoming.number}}))
            return;
        takeNumbers(source());
        transaction.commit();
    }
    drop(incoming);
}

void Transfer::forget(const QByteArray &number) {
    Transaction transaction(source());
    source().run(sql::dropOutgoing, {{"transfer", number}});
    transaction.commit();
}

ItemRecord Transfer::move(const ItemRecord &item, FolderId folder) {
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        const WholeItem whole = read(item.id);
        TransferLock lock(m_target.path());
        const Incoming incoming = placeHiddenCopy(whole, folder, lock);
        bool taken = false;
        try {
            taken = takeFromSource(whole, item, incoming);
        } catch (const Failure &) {
            // What cannot be dropped is settled later.
            Attempt([&] { dropForGood(incoming); });
            throw;
        }
        if (!taken) {
            drop(incoming);
            continue;
        }
        ItemRecord revealed;
        if (const auto failure = Attempt([&] { revealed = reveal(incoming); }))
            throw Failure(failure->number(),
                          QStringLiteral("The item is safe in the store %1 and will appear there when both stores are "
                                         "opened again. %2")
                              .arg(m_target.path(), failure->description()));
        // The note left in the source does no harm until it is cleared.
        Attempt([&] { forget(incoming.number); });
        return revealed;
    }
    throw Failure(failures::itemChanged,
                  QStringLiteral("The item is being changed by somebody else all the time; try again later."));
}

ItemRecord Transfer::copy(ItemId id, FolderId folder) {
    const WholeItem whole = read(id);
    return m_target.insert(folder, whole.record, whole.parts);
}

/// REQUIRES: the mover is dead, which the lock shows.
bool Transfer::settleOne(const Incoming &incoming, TransferLock &lock) {
    if (!lock.take(incoming.item))
        return false;
    // The mover, or another settler, may have ended the move before the lock was taken.
    if (!target().value(sql::isIncoming, {{"transfer", incoming.number}}))
        return false;
    if (source().value(sql::isOutgoing, {{"transfer", incoming.number}})) {
        reveal(incoming);
        forget(incoming.number);
    } else {
        dropForGood(incoming);
    }
    return true;
}

/// Clears the notes of moves that ended but for their last step.
void Transfer::forgetSettled() {
    QList<QByteArray> numbers;
    source().each(sql::outgoing, {{"target", m_target.tag()}},
                  [&numbers](const Row &row) { numbers.append(row[0].toByteArray()); });
    for (const QByteArray &number : std::as_const(numbers))
        if (!target().value(sql::isIncoming, {{"transfer", number}}))
            forget(number);
}

int Transfer::settle() {
    QList<Incoming> open;
    target().each(sql::incoming, {{"source", m_source.tag()}},
                  [&open](const Row &row) { open.append({.item = row.number(0), .number = row[1].toByteArray()}); });
    int settled = 0;
    if (!open.isEmpty()) {
        TransferLock lock(m_target.path());
        for (const Incoming &incoming : std::as_const(open))
            settled += settleOne(incoming, lock) ? 1 : 0;
    }
    forgetSettled();
    return settled;
}

ItemRecord moveBetween(Store &source, const ItemRecord &item, Store &target, FolderId folder) {
    if (source.tag() == target.tag())
        return source.move(item, folder);
    return Transfer(source, target).move(item, folder);
}

ItemRecord copyBetween(Store &source, ItemId id, Store &target, FolderId folder) {
    return Transfer(source, target).copy(id, folder);
}

int settleTransfers(Store &one, Store &other) {
    if (one.tag() == other.tag())
        return 0;
    return Transfer(one, other).settle() + Transfer(other, one).settle();
}

} // namespace desk

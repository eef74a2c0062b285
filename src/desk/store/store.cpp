#include "desk/store/store.h"

#include "desk/store/connection.h"
#include "desk/store/entryid.h"
#include "desk/store/folderorder.h"
#include "desk/store/schema.h"
#include "desk/store/statements.h"
#include "platform/value/failure.h"

#include <QFileInfo>

namespace desk {

namespace {

/// The engine would take a file that is shorter than any store for a new one: it would write over it, and delete the
/// log beside it, which may be all that is left. The file is not looked into: closing it would let go of the locks that
/// this process holds on it by another connection.
void refuseRemains(const QString &path) {
    constexpr qint64 shortest = 512;
    const QFileInfo file(path);
    if (file.isFile() && file.size() >= shortest)
        return;
    const QString problem = !file.isFile()     ? QStringLiteral("it is no file")
                            : file.size() == 0 ? QStringLiteral("it is empty")
                                               : QStringLiteral("it is too short");
    throw Failure(failures::unspecified,
                  QStringLiteral("The store %1 is damaged or is no store (%2); it and what lies beside it were left as "
                                 "they are. Put a copy of the file from a backup in its place.")
                      .arg(path, problem));
}

/// The engine makes the files beside a store with the rights that the store has at that moment, and leaves them where
/// it then fails to write. Those of a store that was read-only would keep it so.
void freeFilesBeside(const QString &path) {
    if (storage::writeBar(path) != storage::Bar::None)
        return;
    for (const char *ending : {"-wal", "-shm", "-transfers"})
        storage::followAccess(path + QString::fromLatin1(ending), path);
}

} // namespace

Store::Store(const QString &path, const StoreOptions &options) {
    if (!QFileInfo::exists(path)) {
        if (!options.create)
            throw Failure(failures::notFound,
                          QStringLiteral("There is no store %1; check the name, or make it first.").arg(path));
        makeStore(path, options.rootName, options.sharing, options.wait);
    }
    refuseRemains(path);
    freeFilesBeside(path);
    m_connection = std::make_unique<Connection>(path, options.wait);
    const Prepared prepared = prepareStore(*m_connection, options.rootName, options.wait);
    m_tag = prepared.tag;
    m_keepsCounts = prepared.keepsCounts;
    m_order = std::make_unique<FolderOrder>(*m_connection, m_keepsCounts ? sql::counts : sql::countItems);
}

Store::~Store() = default;

const QString &Store::path() const { return m_connection->path(); }

QString Store::storeId() const { return storeIdText(m_tag); }

qint64 Store::lastArrival() { return m_connection->value(sql::lastNumber).value_or(0).toLongLong(); }

StoreRevision Store::revision() {
    return {.byOthers = m_connection->dataVersion(), .byThis = m_connection->ownWrites()};
}

StoreMoment Store::moment() { return StoreMoment(*m_connection); }

StoreMoment::StoreMoment(Connection &connection)
    : m_reading(std::make_unique<Transaction>(connection, Transaction::Kind::Read)) {}

StoreMoment::~StoreMoment() = default;

qint64 Store::numberFor(const QString &entryId, EntryId::Kind kind) const {
    const std::optional<EntryId> parsed = EntryId::parse(entryId);
    return parsed && parsed->kind == kind && parsed->storeTag == m_tag ? parsed->number : 0;
}

} // namespace desk

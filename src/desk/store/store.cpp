#include "desk/store/store.h"

#include "desk/store/connection.h"
#include "desk/store/entryid.h"
#include "desk/store/folderorder.h"
#include "desk/store/schema.h"
#include "desk/store/statements.h"
#include "platform/value/failure.h"

#include <QFileInfo>

namespace desk {

Store::Store(const QString &path, const StoreOptions &options) {
    if (!options.create && !QFileInfo::exists(path))
        throw Failure(failures::notFound,
                      QStringLiteral("There is no store %1; check the name, or make it first.").arg(path));
    m_connection = std::make_unique<Connection>(path, options.wait);
    m_tag = prepareStore(*m_connection, options.rootName, options.wait);
    m_order = std::make_unique<FolderOrder>(*m_connection);
    m_seenVersion = m_connection->dataVersion();
}

Store::~Store() = default;

const QString &Store::path() const { return m_connection->path(); }

QString Store::storeId() const { return storeIdText(m_tag); }

qint64 Store::lastArrival() { return m_connection->value(sql::lastNumber).value_or(0).toLongLong(); }

bool Store::changed() {
    const qint64 version = m_connection->dataVersion();
    return std::exchange(m_seenVersion, version) != version;
}

qint64 Store::numberFor(const QString &entryId, EntryId::Kind kind) const {
    const std::optional<EntryId> parsed = EntryId::parse(entryId);
    return parsed && parsed->kind == kind && parsed->storeTag == m_tag ? parsed->number : 0;
}

} // namespace desk

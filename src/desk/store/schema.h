/// The tables of a store's file.
#pragma once

#include "desk/store/connection.h"
#include "platform/storage/access.h"

namespace desk {

/// Makes the file of a new store. It gets its name when it is whole, so what a kill leaves is no store; where another
/// program is quicker, the store is that one's. Fails with `accessDenied` where the folder is missing or takes no file,
/// and with `unspecified` where the store is missing and the log of its last changes is still there: a new store would
/// take that log for its own.
void makeStore(const QString &path, const QString &rootName, storage::Sharing sharing, std::chrono::milliseconds wait);

/// Makes the connection ready: checks that the file is a store of this or an older version, makes the tables in a
/// database that has none, and gives the store's tag. Fails with `unspecified` for a file that is another program's or
/// a newer version's.
QByteArray prepareStore(Connection &connection, const QString &rootName, std::chrono::milliseconds wait);

} // namespace desk

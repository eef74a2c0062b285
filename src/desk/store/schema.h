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

/// What the opening finds out about a store.
struct Prepared {
    QByteArray tag;
    bool keepsCounts = false;
};

/// Makes the connection ready: checks that the file is a store of this or an older version, makes the tables in a
/// database that has none, and brings a store of an older version up to this one. Where that can't be done (the file is
/// read-only, its disk is almost full, another program holds it) the store is used as it is: it answers the same, and
/// takes longer for it. Fails with `unspecified` for a file that is another program's or a newer version's, and for one
/// that says it keeps counts and lacks what keeps them.
Prepared prepareStore(Connection &connection, const QString &rootName, std::chrono::milliseconds wait);

} // namespace desk

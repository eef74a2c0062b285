/// The tables of a store's file.
#pragma once

#include "desk/store/connection.h"

namespace desk {

/// Makes the connection ready: checks that the file is a store of this or an older version, makes the tables in an
/// empty file, and gives the store's tag. Fails with `unspecified` for a file that is another program's or a newer
/// version's.
QByteArray prepareStore(Connection &connection, const QString &rootName, std::chrono::milliseconds wait);

} // namespace desk

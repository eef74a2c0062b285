/// The database engines that a program has, by the names that connection strings give them.
///
/// Each engine is a library below this folder, with one procedure that adds it here. A program links the engines that
/// it wants and adds them before it opens its first connection; nothing is added by itself.
#pragma once

#include "platform/ado/connectionstring.h"
#include "platform/ado/provider.h"

#include <QStringList>

namespace ado {

/// Opens the database that a connection string names, which must exist. Fails with a sentence that says what to do.
///
/// \param busySeconds  how long a statement waits for another program's write.
using EngineOpener = std::shared_ptr<Provider> (*)(const ConnectionPieces &pieces, int busySeconds);

/// Makes an engine known to this program copy. One that is known by the name already is replaced.
///
/// \param provider  the "Provider" of its connection strings; compared without regard to case.
void addEngine(const QString &provider, EngineOpener open);

/// The "Provider" names that are known, in the order of the alphabet.
QStringList engineNames();

/// Opens a database by the engine of its "Provider". Fails with `providerNotFound` where no engine has the name.
std::shared_ptr<Provider> openDatabase(const ConnectionPieces &pieces, int busySeconds);

} // namespace ado

#include "platform/ado/jet/engine.h"

#include "platform/ado/errors.h"
#include "platform/ado/jet/file.h"

namespace ado {

void addJetEngine() {
    addEngine(jetProvider, [](const ConnectionPieces &pieces, int busySeconds) {
        const QString path = pieces.value("Data Source");
        if (path.isEmpty())
            throw Failure(badConnectionString, "The connection string names no database file (\"Data Source=\").");
        return openJetFile(path, busySeconds);
    });
}

} // namespace ado

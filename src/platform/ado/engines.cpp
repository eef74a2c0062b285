#include "platform/ado/engines.h"

#include "platform/ado/errors.h"
#include "platform/value/processlocal.h"

namespace ado {

namespace {

struct Engine {
    QString provider;
    EngineOpener open;
};

/// By the folded name.
ProcessLocal<QMap<QString, Engine>> engines;

[[noreturn]] void failWithoutEngine(const QString &provider, const ConnectionPieces &pieces) {
    // A good string of a helpdesk on a server: it is the engine that is missing, so the string is not to be corrected.
    if (provider.compare("SQLOLEDB.1", Qt::CaseInsensitive) == 0)
        throw Failure(failures::unspecified,
                      QString("The database server %1 can't be reached: database servers are not supported yet. Use a "
                              "database file instead: remove DBConnection.txt and start again.")
                          .arg(pieces.value("Data Source")));
    throw Failure(providerNotFound,
                  QString("There is no database provider named \"%1\". Check the connection string.").arg(provider));
}

} // namespace

void addEngine(const QString &provider, EngineOpener open) {
    engines->insert(provider.toCaseFolded(), {provider, open});
}

QStringList engineNames() {
    QStringList names;
    for (const Engine &each : engines.get())
        names.append(each.provider);
    return names;
}

std::shared_ptr<Provider> openDatabase(const ConnectionPieces &pieces, int busySeconds) {
    const QString provider = pieces.value("Provider");
    const auto found = engines->constFind(provider.toCaseFolded());
    if (found == engines->constEnd())
        failWithoutEngine(provider, pieces);
    return found->open(pieces, busySeconds);
}

} // namespace ado

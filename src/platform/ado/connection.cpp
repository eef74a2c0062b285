#include "platform/ado/connection.h"

#include "platform/ado/connectionstring.h"
#include "platform/ado/jetfile.h"

namespace ado {

void Connection::Open() {
    if (IsOpen())
        throw Failure(alreadyOpen, "The connection is open already.");
    const ConnectionPieces pieces = ConnectionPieces::parse(m_connectionString);
    const QString provider = pieces.value("Provider");
    if (provider.compare("Microsoft.Jet.OLEDB.4.0", Qt::CaseInsensitive) == 0) {
        const QString path = pieces.value("Data Source");
        if (path.isEmpty())
            throw Failure(badConnectionString, "The connection string names no database file (\"Data Source=\").");
        m_provider = openJetFile(path, m_commandTimeout);
    } else if (provider.compare("SQLOLEDB.1", Qt::CaseInsensitive) == 0) {
        throw Failure(failures::unspecified,
                      QString("The database server %1 can't be reached: database servers are not supported yet. Use a "
                              "database file instead: remove DBConnection.txt and start again.")
                          .arg(pieces.value("Data Source")));
    } else {
        throw Failure(
            providerNotFound,
            QString("There is no database provider named \"%1\". Check the connection string.").arg(provider));
    }
}

void Connection::Close() {
    if (!IsOpen())
        throw Failure(objectClosed, "The connection is not open.");
    m_provider.reset();
}

const std::shared_ptr<Provider> &Connection::provider() const {
    if (!IsOpen())
        throw Failure(objectClosed, "The connection is not open.");
    return m_provider;
}

} // namespace ado

#include "platform/ado/connection.h"

#include "platform/ado/engines.h"

namespace ado {

void Connection::Open() {
    if (IsOpen())
        throw Failure(alreadyOpen, "The connection is open already.");
    m_provider = openDatabase(ConnectionPieces::parse(m_connectionString), m_commandTimeout);
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

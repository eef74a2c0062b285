/// Commands: statements that are no selections.
#pragma once

#include "platform/ado/connection.h"

namespace ado {

enum class CommandType { Text = 1 };

/// One statement on a connection. Each execution is one durable change.
class Command {
  public:
    void SetActiveConnection(const Ref<Connection> &connection) { m_connection = connection; }
    void SetCommandType(CommandType) {}
    void SetCommandText(const QString &text) { m_text = text; }
    [[nodiscard]] const QString &CommandText() const { return m_text; }

    /// Runs it; the number of rows it touched.
    qint64 Execute() { return m_connection->provider()->execute(m_text); }

  private:
    Ref<Connection> m_connection;
    QString m_text;
};

} // namespace ado

/// Connection strings: `key=value` pieces between semicolons.
#pragma once

#include <QMap>
#include <QString>

namespace ado {

/// The pieces of a connection string. Keys are found without regard to case or blanks at their ends.
class ConnectionPieces {
  public:
    /// Reads a connection string. A value runs to the next semicolon, without the blanks at its ends; one in single or
    /// double quotes may hold anything, its own quote doubled. "==" in a key is one "=" of it. The last piece of a key
    /// counts, for "Provider" the first. Fails with `badConnectionString` for anything else, and for a text longer than
    /// `longest`.
    static ConnectionPieces parse(const QString &text);

    /// The value of a key, or the empty text.
    [[nodiscard]] QString value(const QString &key) const { return m_values.value(key.toCaseFolded()); }
    [[nodiscard]] qsizetype count() const { return m_values.size(); }

    static constexpr qsizetype longest = 1 << 20;

  private:
    QMap<QString, QString> m_values;
};

/// A value so that `ConnectionPieces::parse` reads it back, quoted where it has to be.
QString quotedConnectionValue(const QString &value);

} // namespace ado

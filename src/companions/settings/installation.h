/// The settings of one installation: those of the database in the program folder.
#pragma once

#include "platform/ado/recordset.h"

namespace settings {

/// One setting as people see it: a value that was empty is empty.
struct Setting {
    QString name;
    QString value;
};

class Installation {
  public:
    enum class Missing { Fail, Create };

    /// Opens the database. Where there is none, it fails with a sentence that says what to do, or creates it with the
    /// settings that a first start stores.
    explicit Installation(Missing missing);

    /// By name, without regard to case.
    [[nodiscard]] QList<Setting> list() const;
    /// Nothing for a name that is not stored.
    [[nodiscard]] std::optional<QString> get(const QString &name) const;
    /// Stores a value, and makes the row where it is missing. Line feeds alone become line ends. Fails for a value that
    /// the system could not read.
    void set(const QString &name, const QString &value);

    /// All settings and lists.
    [[nodiscard]] QByteArray exported() const;
    /// Stores the settings of the file, and brings each list that the file has in line with it. All or nothing.
    void import(const QByteArray &content);

  private:
    [[nodiscard]] Ref<ado::Recordset> open(const QString &source, ado::LockType lock) const;

    Ref<ado::Connection> m_connection;
};

} // namespace settings

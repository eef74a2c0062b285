/// The settings of one installation: those of the database in the program folder.
#pragma once

#include "companions/settings/listtables.h"

namespace settings {

/// One setting as people see it: a value that was empty is empty.
struct Setting {
    QString name;
    QString value;
};

/// Reads an exported file and checks it as far as can be done without a database. Fails with the number of the line.
QList<Section> readSettings(const QByteArray &content);

class Installation {
  public:
    enum class Missing { Fail, Create };

    /// Opens the database. Where there is none, it fails with a sentence that says what to do, or creates it with the
    /// settings that a first start stores.
    explicit Installation(Missing missing);

    /// By name, without regard to case. Of several rows of one name, which another tool can leave, the last counts, as
    /// for the system.
    [[nodiscard]] QList<Setting> list() const;
    /// Nothing for a name that is not stored.
    [[nodiscard]] std::optional<QString> get(const QString &name) const;
    /// Stores a value, and makes the row where it is missing. Line feeds alone become line ends. Fails for a value that
    /// the system could not read.
    void set(const QString &name, const QString &value);

    /// All settings and lists as of one moment: another program's import is in it as a whole or not at all.
    [[nodiscard]] QByteArray exported() const;
    /// Stores the settings of the sections, and brings each list that the file has in line with it. All or nothing.
    /// Tells what it did, section by section.
    QList<Change> import(const QList<Section> &sections);

  private:
    void asAWhole(const std::function<void()> &changes) const;
    [[nodiscard]] Ref<ado::Recordset> open(const QString &source, ado::LockType lock) const;

    Ref<ado::Connection> m_connection;
};

} // namespace settings

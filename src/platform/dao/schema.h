/// The definition of one database file, in SQL.
#pragma once

#include "platform/ado/jet/database.h"
#include "platform/dao/dao.h"

namespace dao {

/// The open file under definition: one transaction from its opening to `commit`, so that the file is complete or
/// absent.
///
/// A new file is built beside its place, under a name of its own, and gets its name when it is complete.
class Schema {
  public:
    enum class Kind { New, Existing };

    Schema(const QString &path, Kind kind);
    ~Schema();
    Schema(const Schema &) = delete;
    Schema &operator=(const Schema &) = delete;

    void addTable(const QString &table, const QList<Ref<Field>> &fields);
    void addColumn(const QString &table, const Field &field);
    void addIndex(const QString &table, const Index &index);
    [[nodiscard]] QStringList tables();
    /// The columns in their order, detached.
    [[nodiscard]] QList<Ref<Field>> columns(const QString &table);
    [[nodiscard]] QList<Ref<Index>> indexes(const QString &table);

    void addProperty(const QString &table, const QString &column, const Property &property);
    [[nodiscard]] Ref<Property> property(const QString &table, const QString &column, const QString &name);

    [[nodiscard]] QList<Relation> relations();
    void addRelation(const Relation &relation);
    /// Whether there was one of that name.
    bool removeRelation(const QString &name);

    /// Ends the definition; nothing else may be called afterwards.
    void commit();

  private:
    QSqlQuery query(const QString &statement, const QList<QVariant> &values);
    [[nodiscard]] static QString definition(const Field &field);

    QString m_path;
    /// Where the file is built; empty for one that exists.
    QString m_temporary;
    std::unique_ptr<ado::JetDatabase> m_database;
};

} // namespace dao

/// Definition of database files: the objects that create a file, its tables, columns, keys and column captions, under
/// the member names of the component that programs of this kind are written against.
///
/// The file is the SQLite file that the embedded provider of `platform/ado` opens. Column types stand in the schema as
/// declared types; captions and other properties stand in the table `jet_properties`, one row a property.
#pragma once

#include "platform/value/ref.h"
#include "platform/value/value.h"

#include <QList>
#include <QString>

#include <memory>

namespace dao {

enum DataType : qint16 {
    dbBoolean = 1,
    dbInteger = 3,
    dbLong = 4,
    dbCurrency = 5,
    dbDouble = 7,
    dbDate = 8,
    dbText = 10,
    dbMemo = 12,
};
constexpr qint32 dbAutoIncrField = 16;
constexpr qint32 dbVersion40 = 64;

constexpr qint32 itemNotFound = 3265;         ///< nothing of that name in the collection
constexpr qint32 databaseExists = 3204;       ///< a file of that name is there already
constexpr qint32 objectExists = 3010;         ///< a table, column or index of that name is there already
constexpr qint32 cannotCreate = 3436;         ///< the file could not be written
constexpr qint32 unsupportedOperation = 3251; ///< a definition that this engine does not take

class Schema;

/// A user-defined property, such as a column's caption.
struct Property {
    QString Name;
    qint16 Type = dbText;
    ::Value Value;
};

/// A column: detached when created, part of the database once its table and it are appended.
class Field {
  public:
    QString Name;
    qint16 Type = 0;
    qint16 Size = 0;
    qint32 Attributes = 0;
    bool AllowZeroLength = false;

    [[nodiscard]] Ref<Property> CreateProperty(const QString &name, qint16 type, const ::Value &value) const;
    /// REQUIRES: the field is part of the database. An existing property of the name fails.
    void AppendProperty(const Ref<Property> &property) const;
    /// Nothing when there is none.
    [[nodiscard]] Ref<Property> FindProperty(const QString &name) const;

  private:
    friend class TableDef;
    friend class Database;
    [[nodiscard]] std::shared_ptr<Schema> schema() const;

    std::weak_ptr<Schema> m_schema;
    QString m_table;
};

/// A key of a table.
class Index {
  public:
    QString Name;
    bool Primary = false;
    bool Unique = false;

    [[nodiscard]] Ref<Field> CreateField(const QString &name) const;
    void AppendField(const Ref<Field> &field) { m_fields.append(field); }
    [[nodiscard]] const QList<Ref<Field>> &Fields() const { return m_fields; }

  private:
    QList<Ref<Field>> m_fields;
};

/// A table: detached when created, part of the database from `Database::AppendTableDef` on. What is appended to it from
/// then on goes to the database.
class TableDef {
  public:
    QString Name;

    [[nodiscard]] Ref<Field> CreateField(const QString &name, qint16 type, qint16 size = 0) const;
    void AppendField(const Ref<Field> &field);
    [[nodiscard]] const QList<Ref<Field>> &Fields() const { return m_fields; }

    [[nodiscard]] Ref<Index> CreateIndex(const QString &name) const;
    /// A primary index must be on the column that numbers itself.
    void AppendIndex(const Ref<Index> &index);
    [[nodiscard]] const QList<Ref<Index>> &Indexes() const { return m_indexes; }

  private:
    friend class Database;
    std::weak_ptr<Schema> m_schema;
    QList<Ref<Field>> m_fields;
    QList<Ref<Index>> m_indexes;
};

constexpr qint32 dbRelationDontEnforce = 2;

/// A relation between two tables. It is kept as information; nothing is enforced.
struct Relation {
    QString Name;
    QString Table;
    QString ForeignTable;
    qint32 Attributes = 0;
};

/// A database under definition.
class Database {
  public:
    explicit Database(std::shared_ptr<Schema> schema);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    [[nodiscard]] Ref<TableDef> CreateTableDef(const QString &name) const;
    void AppendTableDef(const Ref<TableDef> &table);
    /// The tables in the order of their creation.
    [[nodiscard]] QList<Ref<TableDef>> TableDefs() const;
    /// By name without regard to case; fails with `itemNotFound`.
    [[nodiscard]] Ref<TableDef> FindTableDef(const QString &name) const;

    /// The relations in the order of their creation.
    [[nodiscard]] QList<Relation> Relations() const;
    /// Fails with `unsupportedOperation` for a relation that is to be enforced.
    void AppendRelation(const Relation &relation);
    void DeleteRelation(const QString &name);

    /// Writes the definition out and closes the file. A new file appears under its name here, complete; until then, and
    /// when it fails, there is no file of that name.
    void Close();

  private:
    [[nodiscard]] Schema &schema() const;
    std::shared_ptr<Schema> m_schema;
};

/// Where databases come from.
class DBEngine {
  public:
    /// A new database. Dropped without `Close`, it leaves nothing behind. The locale text and the version are the
    /// component's; there is one sort order and one version here. Fails with `databaseExists` for a path that is taken.
    [[nodiscard]] Ref<Database> CreateDatabase(const QString &path, const QString &locale, qint32 options) const;
    /// An existing database, to read its definition or to add to it.
    [[nodiscard]] Ref<Database> OpenDatabase(const QString &path) const;
};

} // namespace dao

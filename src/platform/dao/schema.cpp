#include "platform/dao/schema.h"

#include "platform/ado/errors.h"
#include "platform/ado/jet/file.h"
#include "platform/ado/jet/sql.h"
#include "platform/storage/durable.h"
#include "platform/storage/logowner.h"

#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <fcntl.h>
#include <unistd.h>

namespace dao {

using ado::quotedName;

namespace {

constexpr int busySeconds = 10;

// Part of the format on disk.
constexpr char propertyTable[] = "CREATE TABLE jet_properties (table_name TEXT NOT NULL COLLATE NOCASE, "
                                 "column_name TEXT NOT NULL COLLATE NOCASE, name TEXT NOT NULL COLLATE NOCASE, "
                                 "value TEXT, PRIMARY KEY (table_name, column_name, name))";
constexpr char relationTable[] = "CREATE TABLE jet_relations (name TEXT PRIMARY KEY COLLATE NOCASE, "
                                 "table_name TEXT NOT NULL, foreign_table TEXT NOT NULL, attributes INTEGER NOT NULL)";

struct TypeName {
    qint16 type;
    const char *name;
};
// Part of the format on disk: what `platform/ado` tells a column's type by.
constexpr TypeName typeNames[] = {
    {dbBoolean, "BOOLEAN"}, {dbInteger, "SMALLINT"}, {dbLong, "INTEGER"}, {dbCurrency, "CURRENCY"},
    {dbDouble, "DOUBLE"},   {dbDate, "DATETIME"},    {dbText, "VARCHAR"}, {dbMemo, "LONGTEXT"},
};

QString emptyTextRule(const QString &column) { return column + " takes no empty text"; }
QString longTextRule(const QString &column) { return column + " takes no longer text"; }

/// A new name in a directory lasts from here on.
void syncDirectory(const QString &directory) {
    const int handle = ::open(QFile::encodeName(directory).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0)
        return;
    ::fsync(handle);
    ::close(handle);
}

} // namespace

Schema::Schema(const QString &path, Kind kind) : m_path(ado::machinePath(path)) {
    if (kind == Kind::Existing) {
        m_database = std::make_unique<ado::JetDatabase>(path, ado::JetDatabase::Mode::Write, busySeconds);
        m_database->begin();
        return;
    }
    storage::refuseLoneLog(m_path);
    if (QFileInfo::exists(m_path))
        throw Failure(databaseExists,
                      QString("The database %1 was not created: a file of that name is there.").arg(path));
    m_temporary = m_path + '.' + QUuid::createUuid().toString(QUuid::Id128).left(8) + ".new";
    m_database = std::make_unique<ado::JetDatabase>(m_temporary, ado::JetDatabase::Mode::Create, busySeconds);
    m_database->begin();
    m_database->run(propertyTable);
    m_database->run(relationTable);
}

Schema::~Schema() {
    m_database.reset();
    if (!m_temporary.isEmpty())
        ado::removeJetFile(m_temporary);
}

QSqlQuery Schema::query(const QString &statement, const QList<QVariant> &values) {
    QSqlQuery query = m_database->query();
    m_database->prepare(query, statement);
    for (const QVariant &value : values)
        query.addBindValue(value);
    m_database->run(query);
    return query;
}

QString Schema::definition(const Field &field) {
    const auto *type = std::find_if(std::begin(typeNames), std::end(typeNames),
                                    [&](const TypeName &each) { return each.type == field.Type; });
    if (type == std::end(typeNames))
        throw Failure(unsupportedOperation,
                      QString("The column %1 has a type that is not offered (%2).").arg(field.Name).arg(field.Type));
    const QString name = quotedName(field.Name);
    if (field.Attributes & dbAutoIncrField) {
        // Numbers are never given twice, and stay in 32 bits.
        return QString("%1 INTEGER PRIMARY KEY AUTOINCREMENT CHECK (%1 BETWEEN 1 AND 2147483647)").arg(name);
    }
    QString text = name + ' ' + type->name;
    if (field.Type == dbText) {
        const qint32 size = field.Size > 0 ? field.Size : qint32{ado::longestText};
        text += QString("(%1) CONSTRAINT %2 CHECK (length(%3) <= %1)")
                    .arg(QString::number(size), quotedName(longTextRule(field.Name)), name);
    }
    if ((field.Type == dbText || field.Type == dbMemo) && !field.AllowZeroLength)
        text += QString(" CONSTRAINT %1 CHECK (%2 <> '')").arg(quotedName(emptyTextRule(field.Name)), name);
    return text;
}

void Schema::addTable(const QString &table, const QList<Ref<Field>> &fields) {
    if (tables().contains(table, Qt::CaseInsensitive))
        throw Failure(objectExists, QString("The table %1 is there already.").arg(table));
    QStringList definitions;
    for (const Ref<Field> &field : fields)
        definitions.append(definition(*field));
    m_database->run(QString("CREATE TABLE %1 (%2)").arg(quotedName(table), definitions.join(", ")));
}

void Schema::addColumn(const QString &table, const Field &field) {
    for (const Ref<Field> &each : columns(table))
        if (each->Name.compare(field.Name, Qt::CaseInsensitive) == 0)
            throw Failure(objectExists, QString("The table %1 has a column %2 already.").arg(table, field.Name));
    if (field.Attributes & dbAutoIncrField)
        throw Failure(unsupportedOperation, "A column that numbers itself must be there when the table is made.");
    m_database->run(QString("ALTER TABLE %1 ADD COLUMN %2").arg(quotedName(table), definition(field)));
}

void Schema::addIndex(const QString &table, const Index &index) {
    QStringList names;
    for (const Ref<Field> &field : index.Fields())
        names.append(field->Name);
    if (index.Primary) {
        QSqlQuery key = query("SELECT 1 FROM pragma_table_info(?) WHERE pk = 1 AND name = ? COLLATE NOCASE",
                              {table, names.value(0)});
        if (names.size() != 1 || !key.next())
            throw Failure(unsupportedOperation,
                          QString("The primary key of %1 must be its column that numbers itself.").arg(table));
        return; // The column became the key when the table was made.
    }
    for (QString &name : names)
        name = quotedName(name);
    m_database->run(QString("CREATE %1 INDEX %2 ON %3 (%4)")
                        .arg(index.Unique ? "UNIQUE" : "", quotedName(table + ' ' + index.Name), quotedName(table),
                             names.join(", ")));
}

QStringList Schema::tables() {
    QStringList names;
    QSqlQuery rows = query("SELECT name FROM sqlite_master WHERE type = 'table' AND substr(name, 1, 7) <> 'sqlite_' "
                           "AND substr(name, 1, 4) <> 'jet_' ORDER BY rowid",
                           {});
    while (rows.next())
        names.append(rows.value(0).toString());
    return names;
}

QList<Ref<Field>> Schema::columns(const QString &table) {
    QList<Ref<Field>> fields;
    QSqlQuery rows = query("SELECT c.name, c.type, c.pk, t.sql FROM sqlite_master t, pragma_table_info(t.name) c "
                           "WHERE t.type = 'table' AND t.name = ? COLLATE NOCASE ORDER BY c.cid",
                           {table});
    while (rows.next()) {
        const Ref<Field> field = Ref<Field>::make();
        field->Name = rows.value(0).toString();
        const QString declared = rows.value(1).toString();
        for (const TypeName &each : typeNames)
            if (declared.section('(', 0, 0) == each.name)
                field->Type = each.type;
        field->Size = declared.section('(', 1).section(')', 0, 0).toShort();
        field->Attributes = rows.value(2).toInt() == 1 ? dbAutoIncrField : 0;
        const bool isText = field->Type == dbText || field->Type == dbMemo;
        field->AllowZeroLength = isText && !rows.value(3).toString().contains(quotedName(emptyTextRule(field->Name)));
        fields.append(field);
    }
    return fields;
}

QList<Ref<Index>> Schema::indexes(const QString &table) {
    QList<Ref<Index>> result;
    for (const Ref<Field> &field : columns(table)) {
        if (field->Attributes & dbAutoIncrField) {
            const Ref<Index> index = Ref<Index>::make();
            index->Name = "PrimaryKey";
            index->Primary = true;
            index->Unique = true;
            index->AppendField(field);
            result.append(index);
        }
    }
    // Indexes that the engine keeps for its own look-ups are no part of the definition.
    QSqlQuery rows =
        query("SELECT i.name, i.\"unique\", c.name FROM pragma_index_list(?) i, pragma_index_info(i.name) c "
              "WHERE substr(i.name, 1, 7) <> 'lookup ' ORDER BY i.seq DESC, c.seqno",
              {table});
    QString last;
    while (rows.next()) {
        const QString name = rows.value(0).toString();
        if (name != last) {
            const Ref<Index> index = Ref<Index>::make();
            index->Name = name.startsWith(table + ' ') ? name.mid(table.size() + 1) : name;
            index->Unique = rows.value(1).toBool();
            result.append(index);
            last = name;
        }
        result.last()->AppendField(result.last()->CreateField(rows.value(2).toString()));
    }
    return result;
}

void Schema::addProperty(const QString &table, const QString &column, const Property &property) {
    if (!this->property(table, column, property.Name).isNothing())
        throw Failure(objectExists, QString("The column %1 has a property %2 already.").arg(column, property.Name));
    query("INSERT INTO jet_properties (table_name, column_name, name, value) VALUES (?, ?, ?, ?)",
          {table, column, property.Name, std::get<QString>(property.Value.held())});
}

Ref<Property> Schema::property(const QString &table, const QString &column, const QString &name) {
    QSqlQuery rows =
        query("SELECT name, value FROM jet_properties WHERE table_name = ? AND column_name = ? AND name = ?",
              {table, column, name});
    if (!rows.next())
        return nullptr;
    return Ref<Property>::make(Property{rows.value(0).toString(), dbMemo, rows.value(1).toString()});
}

QList<Relation> Schema::relations() {
    QList<Relation> result;
    QSqlQuery rows = query("SELECT name, table_name, foreign_table, attributes FROM jet_relations ORDER BY rowid", {});
    while (rows.next())
        result.append(
            {rows.value(0).toString(), rows.value(1).toString(), rows.value(2).toString(), rows.value(3).toInt()});
    return result;
}

void Schema::addRelation(const Relation &relation) {
    query("INSERT INTO jet_relations (name, table_name, foreign_table, attributes) VALUES (?, ?, ?, ?)",
          {relation.Name, relation.Table, relation.ForeignTable, relation.Attributes});
}

bool Schema::removeRelation(const QString &name) {
    return query("DELETE FROM jet_relations WHERE name = ?", {name}).numRowsAffected() > 0;
}

void Schema::commit() {
    m_database->commit();
    m_database.reset();
    if (m_temporary.isEmpty())
        return;
    // Closing took everything into the one file. The name is taken only where it is free.
    if (Attempt([&] { storage::renameNew(m_temporary, m_path); }))
        throw Failure(cannotCreate, QString("The database %1 could not be given its name. Check whether a file of that "
                                            "name is there, and the rights to its folder.")
                                        .arg(m_path));
    m_temporary.clear();
    syncDirectory(QFileInfo(m_path).absolutePath());
}

} // namespace dao

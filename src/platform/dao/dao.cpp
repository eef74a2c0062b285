#include "platform/dao/dao.h"

#include "platform/dao/schema.h"

namespace dao {

Ref<Property> Field::CreateProperty(const QString &name, qint16 type, const ::Value &value) const {
    if ((type != dbText && type != dbMemo) || !value.isText())
        throw Failure(unsupportedOperation, QString("The property %1 is no text; others are not offered.").arg(name));
    return Ref<Property>::make(Property{name, type, value});
}

std::shared_ptr<Schema> Field::schema() const {
    std::shared_ptr<Schema> schema = m_schema.lock();
    if (!schema)
        throw Failure(itemNotFound, QString("The column %1 is not part of an open database.").arg(Name));
    return schema;
}

void Field::AppendProperty(const Ref<Property> &property) const { schema()->addProperty(m_table, Name, *property); }

Ref<Property> Field::FindProperty(const QString &name) const { return schema()->property(m_table, Name, name); }

Ref<Field> Index::CreateField(const QString &name) const {
    const Ref<Field> field = Ref<Field>::make();
    field->Name = name;
    return field;
}

Ref<Field> TableDef::CreateField(const QString &name, qint16 type, qint16 size) const {
    const Ref<Field> field = Ref<Field>::make();
    field->Name = name;
    field->Type = type;
    field->Size = size;
    return field;
}

void TableDef::AppendField(const Ref<Field> &field) {
    if (const std::shared_ptr<Schema> schema = m_schema.lock()) {
        schema->addColumn(Name, *field);
        field->m_schema = schema;
        field->m_table = Name;
    }
    m_fields.append(field);
}

Ref<Index> TableDef::CreateIndex(const QString &name) const {
    const Ref<Index> index = Ref<Index>::make();
    index->Name = name;
    return index;
}

void TableDef::AppendIndex(const Ref<Index> &index) {
    const std::shared_ptr<Schema> schema = m_schema.lock();
    if (!schema)
        throw Failure(unsupportedOperation, QString("The table %1 must be in the database before its keys.").arg(Name));
    schema->addIndex(Name, *index);
    m_indexes.append(index);
}

Database::Database(std::shared_ptr<Schema> schema) : m_schema(std::move(schema)) {}

Database::~Database() = default;

Schema &Database::schema() const {
    if (!m_schema)
        throw Failure(failures::objectNotSet, "The database has been closed.");
    return *m_schema;
}

Ref<TableDef> Database::CreateTableDef(const QString &name) const {
    const Ref<TableDef> table = Ref<TableDef>::make();
    table->Name = name;
    return table;
}

void Database::AppendTableDef(const Ref<TableDef> &table) {
    schema().addTable(table->Name, table->m_fields);
    table->m_schema = m_schema;
    for (const Ref<Field> &field : table->m_fields) {
        field->m_schema = m_schema;
        field->m_table = table->Name;
    }
}

QList<Ref<TableDef>> Database::TableDefs() const {
    QList<Ref<TableDef>> result;
    for (const QString &name : schema().tables()) {
        const Ref<TableDef> table = CreateTableDef(name);
        table->m_fields = schema().columns(name);
        table->m_indexes = schema().indexes(name);
        table->m_schema = m_schema;
        for (const Ref<Field> &field : table->m_fields) {
            field->m_schema = m_schema;
            field->m_table = name;
        }
        result.append(table);
    }
    return result;
}

Ref<TableDef> Database::FindTableDef(const QString &name) const {
    for (const Ref<TableDef> &table : TableDefs())
        if (table->Name.compare(name, Qt::CaseInsensitive) == 0)
            return table;
    throw Failure(itemNotFound, QString("The database has no table %1.").arg(name));
}

QList<Relation> Database::Relations() const { return schema().relations(); }

void Database::AppendRelation(const Relation &relation) {
    if (!(relation.Attributes & dbRelationDontEnforce))
        throw Failure(unsupportedOperation, "Relations are not enforced here.");
    schema().addRelation(relation);
}

void Database::DeleteRelation(const QString &name) {
    if (!schema().removeRelation(name))
        throw Failure(itemNotFound, QString("The database has no relation %1.").arg(name));
}

void Database::Close() {
    schema().commit();
    m_schema.reset();
}

Ref<Database> DBEngine::CreateDatabase(const QString &path, const QString &, qint32) const {
    return Ref<Database>::make(std::make_shared<Schema>(path, Schema::Kind::New));
}

Ref<Database> DBEngine::OpenDatabase(const QString &path) const {
    return Ref<Database>::make(std::make_shared<Schema>(path, Schema::Kind::Existing));
}

} // namespace dao

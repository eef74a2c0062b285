#include "companions/settings/installation.h"

#include "companions/settings/catalogue.h"
#include "companions/settings/settingsfile.h"
#include "orvelle/core/process.h"
#include "orvelle/core/sorting.h"
#include "orvelle/database/connection.h"
#include "orvelle/database/creation.h"
#include "orvelle/reference/settings.h"
#include "orvelle/reference/texts.h"
#include "platform/scripting/path.h"
#include "platform/value/convert.h"

namespace settings {

namespace {

constexpr char settingsTable[] = "tblOtherSettings";
constexpr char settingsSection[] = "settings";
constexpr char nameColumn[] = "strPropName";
constexpr char valueColumn[] = "strPropValue";

/// Makes the database as a first start does: the tables, then the settings with their first values.
void createDatabase(const QString &path) {
    subCreateFilledDB(path, [](const Ref<ado::Connection> &connection) { cSettings().SaveTo(connection); });
}

QString findDatabase(Installation::Missing missing) {
    const QString connection = fncFindInstalledDatabase();
    if (!connection.isEmpty())
        return connection;
    const QString folder = fncProgramFolder();
    if (missing == Installation::Missing::Fail)
        throw Failure(failures::fileNotFound, QString("There is no database in %1 yet. Start orvelle once, or store a "
                                                      "setting with \"set\", which creates it.")
                                                  .arg(scripting::nativePath(folder)));
    if (const std::optional<QString> file = fncInstalledFile())
        createDatabase(*file);
    return fncGetConnection();
}

QString textOf(const Value &value) { return value.isNull() ? QString() : toText(value); }

/// The table holds one blank for an empty text.
QString shown(const QString &stored) { return stored == " " ? QString() : stored; }

QString storable(QString value) {
    if (value.isEmpty())
        return " ";
    return value.replace("\r\n", "\n").replace("\n", "\r\n");
}

enum class Stored { Added, Changed, Kept };

/// Writes one setting into the open table, into every row of its name: of several that another tool left, the system
/// reads the last.
Stored store(const Ref<ado::Recordset> &set, const QString &name, const QString &value) {
    const QString criterion = QString(nameColumn) + " = " + fncQuoted(name);
    bool isFound = false;
    bool isChanged = false;
    if (set->RecordCount() != 0) {
        set->MoveFirst();
        for (set->Find(criterion); !set->IsEOF(); set->MoveNext(), set->Find(criterion)) {
            isFound = true;
            if (shown(textOf(set->Fields(valueColumn).Value())) == shown(value))
                continue;
            isChanged = true;
            set->Fields(valueColumn).SetValue(value);
            set->Update();
        }
    }
    if (isFound)
        return isChanged ? Stored::Changed : Stored::Kept;
    const Known *known = findKnown(name);
    set->AddNew();
    set->Fields(nameColumn).SetValue(known ? QString(known->name) : name);
    set->Fields(valueColumn).SetValue(value);
    set->Update();
    return Stored::Added;
}

Change storeSettings(const Section &section, const Ref<ado::Recordset> &set) {
    Change change{section.name, {}, {}, {}};
    for (const Row &row : section.rows) {
        // An empty text can't be stored in the column.
        switch (store(set, row.fields[0], row.fields[1].isEmpty() ? " " : row.fields[1])) {
        case Stored::Added:
            change.added.append(row.fields[0]);
            break;
        case Stored::Changed:
            change.changed.append(row.fields[0]);
            break;
        case Stored::Kept:
            break;
        }
    }
    return change;
}

void requireFields(const Section &section, qsizetype fields) {
    for (const Row &row : section.rows)
        if (row.fields.size() != fields)
            refuseLine(row.line, QString("the row of [%1] has %2 fields and needs %3: %4")
                                     .arg(section.name)
                                     .arg(row.fields.size())
                                     .arg(fields)
                                     .arg(row.fields.join(", ").left(200)));
}

void checkSettings(const Section &section) {
    requireFields(section, 2);
    checkNames(section);
    for (const Row &row : section.rows)
        if (const std::optional<QString> problem = problemWith(row.fields[0], row.fields[1]))
            refuseLine(row.line, problem->chopped(1));
}

/// Every setting under its name, as the system reads it: of several rows of one name the last counts.
cOtherSettings storedSettings(const Ref<ado::Recordset> &set) {
    cOtherSettings stored;
    stored.FromRS(set);
    return stored;
}

} // namespace

QList<Section> readSettings(const QByteArray &content) {
    QList<Section> sections = readSections(content);
    for (const Section &section : sections) {
        if (section.name == settingsSection) {
            checkSettings(section);
            continue;
        }
        const ListTable *table = findListTable(section.name);
        if (!table)
            refuseLine(section.line, QString("there is no section [%1]").arg(section.name));
        requireFields(section, table->columns.size());
        checkList(*table, section);
    }
    return sections;
}

Installation::Installation(Missing missing) : m_connection(Ref<ado::Connection>::make()) {
    m_connection->SetConnectionString(findDatabase(missing));
    m_connection->Open();
}

void Installation::asAWhole(const std::function<void()> &changes) const {
    ado::Transaction transaction(*m_connection);
    changes();
    transaction.commit();
}

Ref<ado::Recordset> Installation::open(const QString &source, ado::LockType lock) const {
    return fncOpenRecordset(m_connection, source, lock);
}

QList<Setting> Installation::list() const {
    const cOtherSettings stored = storedSettings(open(settingsTable, ado::LockType::ReadOnly));
    QList<Setting> all;
    for (const QString &name : stored.DicList->Keys())
        all.append({name, shown(stored.DicList->Item(name))});
    std::sort(all.begin(), all.end(),
              [](const Setting &left, const Setting &right) { return fncCompareText(left.name, right.name) < 0; });
    return all;
}

std::optional<QString> Installation::get(const QString &name) const {
    const cOtherSettings stored = storedSettings(open(settingsTable, ado::LockType::ReadOnly));
    if (!stored.DicList->Exists(name))
        return std::nullopt;
    return shown(stored.DicList->Item(name));
}

void Installation::set(const QString &name, const QString &value) {
    if (const std::optional<QString> problem = problemWith(name, value))
        throw Failure(failures::invalidCall, *problem);
    // Read and written in one go: two programs that store a new setting at once would both add it.
    asAWhole([&] { store(open(settingsTable, ado::LockType::Optimistic), name, storable(value)); });
}

QByteArray Installation::exported() const {
    const ado::Moment moment(*m_connection);
    Section settingRows{settingsSection, {}, 0};
    for (const Setting &each : list())
        if (!each.name.trimmed().isEmpty())
            settingRows.rows.append({{each.name, each.value}, 0});
    QList<Section> sections{settingRows};
    QStringList headings{"name, value"};
    for (const ListTable &table : listTables()) {
        sections.append(readList(table, open(table.source(), ado::LockType::ReadOnly)));
        headings.append(table.heading);
    }
    return writeSections(sections, headings);
}

QList<Change> Installation::import(const QList<Section> &sections) {
    QList<Change> changes;
    asAWhole([&] {
        for (const Section &section : sections) {
            const ListTable *table = findListTable(section.name);
            changes.append(table ? writeList(*table, section, open(table->source(), ado::LockType::Optimistic))
                                 : storeSettings(section, open(settingsTable, ado::LockType::Optimistic)));
        }
    });
    return changes;
}

} // namespace settings

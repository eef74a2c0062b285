#include "companions/settings/installation.h"

#include "companions/settings/catalogue.h"
#include "companions/settings/listtables.h"
#include "companions/settings/settingsfile.h"
#include "core/process.h"
#include "database/connection.h"
#include "database/creation.h"
#include "database/upgrade.h"
#include "platform/ado/jetfile.h"
#include "platform/value/convert.h"
#include "reference/settings.h"

namespace settings {

namespace {

constexpr char settingsTable[] = "tblOtherSettings";
constexpr char settingsSection[] = "settings";
constexpr int nameColumn = 1;
constexpr int valueColumn = 2;

/// Creates the database as a first start does: the tables, then the settings with their first values.
void createDatabase() {
    if (!fncCreateAccessDB(strDBPath + "\\" + strDBFileName))
        throw Failure(failures::unspecified, QString("The database could not be created in %1. Check the rights to the "
                                                     "folder and the room on its disk.")
                                                 .arg(ado::machinePath(fncProgramFolder())));
    subCreateSettings();
    objSettings->SaveSettings();
    subCloseConnection();
}

QString findDatabase(Installation::Missing missing) {
    subFindDatabaseFile();
    strDBPath = fncProgramFolder();
    const QString connection = fncGetConnection();
    if (!connection.isEmpty())
        return connection;
    if (missing == Installation::Missing::Fail)
        throw Failure(failures::fileNotFound, QString("There is no database in %1 yet. Start orvelle once, or store a "
                                                      "setting with \"set\", which creates it.")
                                                  .arg(ado::machinePath(fncProgramFolder())));
    createDatabase();
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

QString quoted(QString text) { return u'\'' + text.replace("'", "''") + u'\''; }

/// Writes one setting into the open table.
void store(const Ref<ado::Recordset> &set, const QString &name, const QString &value) {
    if (const std::optional<QString> problem = problemWith(name, value))
        throw Failure(failures::invalidCall, *problem);
    if (set->RecordCount() != 0) {
        set->MoveFirst();
        set->Find("strPropName = " + quoted(name));
    }
    if (set->IsEOF()) {
        const Known *known = findKnown(name);
        set->AddNew();
        set->Fields(nameColumn).SetValue(known ? QString(known->name) : name);
    }
    set->Fields(valueColumn).SetValue(storable(value));
    set->Update();
}

void requireFields(const Section &section, qsizetype fields) {
    for (const QStringList &row : section.rows)
        if (row.size() != fields)
            throw Failure(failures::invalidCall, QString("A row of [%1] has %2 fields and needs %3: %4")
                                                     .arg(section.name)
                                                     .arg(row.size())
                                                     .arg(fields)
                                                     .arg(row.join(", ").left(200)));
}

} // namespace

Installation::Installation(Missing missing) : m_connection(Ref<ado::Connection>::make()) {
    m_connection->SetConnectionString(findDatabase(missing));
    m_connection->Open();
}

Ref<ado::Recordset> Installation::open(const QString &source, ado::LockType lock) const {
    const auto set = Ref<ado::Recordset>::make();
    set->SetActiveConnection(m_connection);
    set->SetSource(source);
    set->SetLockType(lock);
    set->Open();
    return set;
}

QList<Setting> Installation::list() const {
    QList<Setting> result;
    const Ref<ado::Recordset> set =
        open("SELECT strPropName, strPropValue FROM tblOtherSettings ORDER BY strPropName", ado::LockType::ReadOnly);
    for (; !set->IsEOF(); set->MoveNext())
        result.append({textOf(set->Fields(0).Value()), shown(textOf(set->Fields(1).Value()))});
    return result;
}

std::optional<QString> Installation::get(const QString &name) const {
    const Ref<ado::Recordset> set = open(settingsTable, ado::LockType::ReadOnly);
    set->Find("strPropName = " + quoted(name));
    if (set->IsEOF())
        return std::nullopt;
    return shown(textOf(set->Fields(valueColumn).Value()));
}

void Installation::set(const QString &name, const QString &value) {
    store(open(settingsTable, ado::LockType::Optimistic), name, value);
}

QByteArray Installation::exported() const {
    Section settingRows{settingsSection, {}};
    for (const Setting &each : list())
        settingRows.rows.append({each.name, each.value});
    QList<Section> sections{settingRows};
    QStringList headings{"name, value"};
    for (const ListTable &table : listTables()) {
        sections.append(readList(table, open(table.source(), ado::LockType::ReadOnly)));
        headings.append(table.heading);
    }
    return writeSections(sections, headings);
}

void Installation::import(const QByteArray &content) {
    const QList<Section> sections = readSections(content);
    m_connection->BeginTrans();
    try {
        for (const Section &section : sections) {
            if (section.name == settingsSection) {
                requireFields(section, 2);
                const Ref<ado::Recordset> set = open(settingsTable, ado::LockType::Optimistic);
                for (const QStringList &row : section.rows)
                    store(set, row[0], row[1]);
                continue;
            }
            const ListTable *table = findListTable(section.name);
            if (!table)
                throw Failure(failures::invalidCall, QString("There is no section [%1].").arg(section.name));
            requireFields(section, table->columns.size());
            writeList(*table, section, open(table->table, ado::LockType::Optimistic));
        }
        m_connection->CommitTrans();
    } catch (const Failure &) {
        static_cast<void>(Attempt([&] { m_connection->RollbackTrans(); }));
        throw;
    }
}

} // namespace settings

#include "companions/settings/listtables.h"

#include "platform/value/convert.h"

namespace settings {

namespace {

/// An amount with four decimals and a point.
QString amountText(Currency amount) {
    const quint64 magnitude =
        amount.scaled() < 0 ? 0 - static_cast<quint64>(amount.scaled()) : static_cast<quint64>(amount.scaled());
    return QString("%1%2.%3")
        .arg(amount.scaled() < 0 ? "-" : "")
        .arg(magnitude / 10000)
        .arg(magnitude % 10000, 4, 10, QChar(u'0'));
}

QString fieldText(const Value &value) {
    if (value.isNull())
        return {};
    if (value.holds<Currency>())
        return amountText(std::get<Currency>(value.held()));
    return toText(value);
}

Value fieldValue(const QString &column, const QString &text) {
    if (column.startsWith("str"))
        return text;
    if (text.trimmed().isEmpty())
        return Value::Null{};
    bool isNumber = false;
    const double number = QLocale::c().toDouble(text.trimmed(), &isNumber);
    if (!isNumber)
        throw Failure(failures::typeMismatch, QString("\"%1\" is no number, and %2 needs one.").arg(text, column));
    return number;
}

QString folded(const QString &text) { return text.toCaseFolded(); }

/// Writes the columns of the current row that differ; nothing when none does.
void writeRow(const ListTable &table, const QStringList &row, const Ref<ado::Recordset> &set) {
    for (qsizetype at = 1; at < table.columns.size(); ++at) {
        ado::Field field = set->Fields(table.columns[at]);
        if (fieldText(field.Value()) != row[at])
            field.SetValue(fieldValue(table.columns[at], row[at]));
    }
    set->Update();
}

} // namespace

QString ListTable::source() const { return QString("SELECT * FROM %1 ORDER BY %2").arg(table, columns[0]); }

const QList<ListTable> &listTables() {
    static const QList<ListTable> tables{
        {"responsibles", "name, e-mail, hourly rate", "tblPersons", {"strPersonName", "strEmail", "curRate"}},
        {"problem types",
         "description, category, default minutes",
         "tblTypes",
         {"strTypeDescription", "strCategory", "intDefMin"}},
        {"caller categories", "name", "tblCallerCategories", {"strCallerCategory"}},
        {"statuses", "name", "tblStatuses", {"strStatus"}},
        {"callers",
         "name, e-mail, telephone, category, comment",
         "tblCallers",
         {"strFullName", "strEmail", "strTelephone", "strCategory", "strComment"}},
    };
    return tables;
}

const ListTable *findListTable(const QString &section) {
    for (const ListTable &each : listTables())
        if (each.section == section)
            return &each;
    return nullptr;
}

Section readList(const ListTable &table, const Ref<ado::Recordset> &set) {
    Section section{table.section, {}};
    for (; !set->IsEOF(); set->MoveNext()) {
        QStringList row;
        for (const QString &column : table.columns)
            row.append(fieldText(set->Fields(column).Value()));
        // Rows without a name are in no list.
        if (!row[0].isEmpty())
            section.rows.append(row);
    }
    return section;
}

void writeList(const ListTable &table, const Section &section, const Ref<ado::Recordset> &set) {
    QHash<QString, QStringList> wanted;
    for (const QStringList &row : section.rows) {
        if (row[0].trimmed().isEmpty() || wanted.contains(folded(row[0])))
            throw Failure(failures::invalidCall,
                          QString("A row of [%1] has no name, or its name comes twice: %2").arg(section.name, row[0]));
        wanted.insert(folded(row[0]), row);
    }
    for (; !set->IsEOF(); set->MoveNext()) {
        const QString name = fieldText(set->Fields(table.columns[0]).Value());
        if (name.isEmpty())
            continue;
        const auto row = wanted.constFind(folded(name));
        if (row == wanted.constEnd()) {
            set->Delete();
            continue;
        }
        writeRow(table, *row, set);
        wanted.erase(row);
    }
    for (const QStringList &row : section.rows) {
        if (!wanted.contains(folded(row[0])))
            continue;
        set->AddNew();
        set->Fields(table.columns[0]).SetValue(row[0]);
        writeRow(table, row, set);
    }
}

} // namespace settings

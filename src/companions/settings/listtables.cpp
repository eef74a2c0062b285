#include "companions/settings/listtables.h"

#include "platform/value/convert.h"

#include <QRegularExpression>
#include <QSet>

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

/// An amount as `amountText` writes it, exactly; nothing for any other text.
std::optional<Currency> amountOf(const QString &text) {
    static const QRegularExpression form("^(-?\\d{1,15})(?:\\.(\\d{1,4}))?$");
    const QRegularExpressionMatch match = form.match(text);
    qlonglong scaled = 0;
    bool isNumber = false;
    if (match.hasMatch())
        scaled = (match.captured(1) + match.captured(2).leftJustified(4, u'0')).toLongLong(&isNumber);
    return isNumber ? std::optional(Currency::fromScaled(scaled)) : std::nullopt;
}

Value fieldValue(const QString &column, const QString &text) {
    if (column.startsWith("str"))
        return text;
    if (text.trimmed().isEmpty())
        return Value::Null{};
    if (const std::optional<Currency> amount = amountOf(text.trimmed()); amount && column.startsWith("cur"))
        return *amount;
    bool isNumber = false;
    const double number = QLocale::c().toDouble(text.trimmed(), &isNumber);
    if (!isNumber || !std::isfinite(number))
        throw Failure(failures::typeMismatch, QString("\"%1\" is no number, and %2 needs one").arg(text, column));
    return number;
}

QString folded(const QString &text) { return text.toCaseFolded(); }

/// The same as a value that the column holds, by the kind in its name.
Value heldValue(const QString &column, const Row &row, const QString &text) {
    try {
        const Value value = fieldValue(column, text);
        if (value.isNull() || column.startsWith("str"))
            return ado::columnValue(ado::ColumnType::Text, value);
        return column.startsWith("cur") ? Value(toCurrency(value)) : Value(toInt16(value));
    } catch (const Failure &failure) {
        if (failure.number() != failures::overflow)
            refuseLine(row.line, failure.description());
        refuseLine(row.line, QString("%1 is too large for %2").arg(text, column));
    }
}

/// Sets the columns of the current row that differ. Whether any does.
bool setRow(const ListTable &table, const Row &row, const Ref<ado::Recordset> &set) {
    bool isChanged = false;
    for (qsizetype at = 1; at < table.columns.size(); ++at) {
        ado::Field field = set->Fields(table.columns[at]);
        const Value before = field.Value();
        if (fieldText(before) == row.fields[at])
            continue;
        field.SetValue(heldValue(table.columns[at], row, row.fields[at]));
        isChanged = isChanged || field.Value() != before;
    }
    return isChanged;
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
    Section section{table.section, {}, 0};
    QSet<QString> met;
    for (; !set->IsEOF(); set->MoveNext()) {
        Row row;
        for (const QString &column : table.columns)
            row.fields.append(fieldText(set->Fields(column).Value()));
        // Rows without a name are in no list, and of equal names the first is.
        if (row.fields[0].isEmpty() || met.contains(folded(row.fields[0])))
            continue;
        met.insert(folded(row.fields[0]));
        section.rows.append(row);
    }
    return section;
}

void checkNames(const Section &section) {
    QSet<QString> met;
    for (const Row &row : section.rows) {
        if (row.fields[0].isEmpty())
            refuseLine(row.line, QString("the row of [%1] has no name").arg(section.name));
        if (row.fields[0].size() > ado::longestText)
            refuseLine(row.line, QString("a name takes %1 characters at most").arg(ado::longestText));
        if (met.contains(folded(row.fields[0])))
            refuseLine(row.line, QString("\"%1\" comes twice in [%2]").arg(row.fields[0], section.name));
        met.insert(folded(row.fields[0]));
    }
}

void checkList(const ListTable &table, const Section &section) {
    checkNames(section);
    for (const Row &row : section.rows)
        for (qsizetype at = 1; at < table.columns.size(); ++at)
            static_cast<void>(heldValue(table.columns[at], row, row.fields[at]));
}

Change writeList(const ListTable &table, const Section &section, const Ref<ado::Recordset> &set) {
    Change change{table.section, {}, {}, {}};
    QHash<QString, const Row *> wanted;
    for (const Row &row : section.rows)
        wanted.insert(folded(row.fields[0]), &row);
    QSet<QString> met;
    for (; !set->IsEOF(); set->MoveNext()) {
        const QString name = fieldText(set->Fields(table.columns[0]).Value());
        if (name.isEmpty() || met.contains(folded(name)))
            continue;
        met.insert(folded(name));
        const Row *row = wanted.value(folded(name));
        if (row == nullptr) {
            change.removed.append(name);
            set->Delete();
        } else if (setRow(table, *row, set)) {
            change.changed.append(name);
            set->Update();
        } else {
            set->CancelUpdate();
        }
    }
    for (const Row &row : section.rows) {
        if (met.contains(folded(row.fields[0])))
            continue;
        set->AddNew();
        set->Fields(table.columns[0]).SetValue(row.fields[0]);
        setRow(table, row, set);
        set->Update();
        change.added.append(row.fields[0]);
    }
    return change;
}

} // namespace settings

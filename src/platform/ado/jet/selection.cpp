#include "platform/ado/jet/selection.h"

#include "platform/ado/errors.h"
#include "platform/ado/jet/database.h"

#include <QHash>

#include <sqlite3.h>

#include <limits>

namespace ado {

namespace {

ColumnType typeOfDeclaration(const QString &declared) {
    const QString name = declared.section(u'(', 0, 0).trimmed().toUpper();
    static const QHash<QString, ColumnType> types{
        {"VARCHAR", ColumnType::Text}, {"LONGTEXT", ColumnType::Memo},  {"SMALLINT", ColumnType::Short},
        {"INTEGER", ColumnType::Long}, {"CURRENCY", ColumnType::Money}, {"DATETIME", ColumnType::Date},
        {"BOOLEAN", ColumnType::Flag}, {"DOUBLE", ColumnType::Double},
    };
    return types.value(name, ColumnType::Unknown);
}

template <class T>
bool fits(qint64 number) {
    return number >= std::numeric_limits<T>::min() && number <= std::numeric_limits<T>::max();
}

Value wholeNumber(ColumnType type, qint64 number) {
    switch (type) {
    case ColumnType::Short:
        if (fits<qint16>(number))
            return static_cast<qint16>(number);
        break;
    case ColumnType::Money:
        return Currency::fromScaled(number);
    case ColumnType::Date:
        return DateTime{static_cast<double>(number)};
    case ColumnType::Flag:
        return number != 0;
    case ColumnType::Double:
        return static_cast<double>(number);
    default:
        break;
    }
    if (fits<qint32>(number))
        return static_cast<qint32>(number);
    return static_cast<double>(number);
}

} // namespace

JetSelection::JetSelection(JetDatabase &database, const QString &statement) : m_database(database) {
    const QByteArray text = statement.toUtf8();
    const char *rest = nullptr;
    const int code = sqlite3_prepare_v2(m_database.handle(), text.constData(), -1, &m_statement, &rest);
    if (code != SQLITE_OK)
        fail(code);
    if (m_statement == nullptr || !QByteArray(rest).trimmed().isEmpty()) {
        sqlite3_finalize(m_statement);
        throw Failure(statementFailed, "The database takes one statement at a time.");
    }
}

JetSelection::~JetSelection() { sqlite3_finalize(m_statement); }

std::vector<Column> JetSelection::columns() const {
    const int count = sqlite3_column_count(m_statement);
    std::vector<Column> result;
    result.reserve(static_cast<std::size_t>(count));
    for (int at = 0; at < count; ++at)
        result.push_back({QString::fromUtf8(sqlite3_column_name(m_statement, at)),
                          typeOfDeclaration(QString::fromUtf8(sqlite3_column_decltype(m_statement, at)))});
    return result;
}

bool JetSelection::next() {
    const int code = sqlite3_step(m_statement);
    if (code != SQLITE_ROW && code != SQLITE_DONE)
        fail(code);
    return code == SQLITE_ROW;
}

Row JetSelection::row(const std::vector<Column> &columns) const {
    Row result;
    result.reserve(columns.size());
    for (std::size_t at = 0; at < columns.size(); ++at)
        result.push_back(value(static_cast<int>(at), columns[at].type));
    return result;
}

Value JetSelection::value(int column, ColumnType type) const {
    switch (sqlite3_column_type(m_statement, column)) {
    case SQLITE_NULL:
        return Value::Null{};
    case SQLITE_INTEGER: {
        const qint64 number = sqlite3_column_int64(m_statement, column);
        if (type == ColumnType::Text || type == ColumnType::Memo)
            return QString::number(number);
        return wholeNumber(type, number);
    }
    case SQLITE_FLOAT: {
        const double number = sqlite3_column_double(m_statement, column);
        return type == ColumnType::Date ? Value(DateTime{number}) : Value(number);
    }
    default: {
        const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
        return QString::fromUtf8(text, sqlite3_column_bytes(m_statement, column));
    }
    }
}

void JetSelection::fail(int code) const {
    m_database.fail(code, QString::fromUtf8(sqlite3_errmsg(m_database.handle())));
}

} // namespace ado

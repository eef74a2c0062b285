#include "desk/store/statement.h"

#include "desk/store/storedtext.h"

#include <sqlite3.h>

namespace desk {

namespace {

QByteArray bytesIn(sqlite3_stmt *statement, int column) {
    const void *bytes = sqlite3_column_blob(statement, column);
    return {static_cast<const char *>(bytes), sqlite3_column_bytes(statement, column)};
}

QString textIn(sqlite3_stmt *statement, int column) {
    const unsigned char *text = sqlite3_column_text(statement, column);
    return QString::fromUtf8(reinterpret_cast<const char *>(text), sqlite3_column_bytes(statement, column));
}

} // namespace

QVariant Row::operator[](int column) const {
    switch (sqlite3_column_type(m_statement, column)) {
    case SQLITE_INTEGER:
        return static_cast<qlonglong>(sqlite3_column_int64(m_statement, column));
    case SQLITE_FLOAT:
        return sqlite3_column_double(m_statement, column);
    case SQLITE_TEXT:
        return textIn(m_statement, column);
    case SQLITE_BLOB:
        return bytesIn(m_statement, column);
    default:
        return {};
    }
}

qint64 Row::number(int column) const { return sqlite3_column_int64(m_statement, column); }

QString Row::text(int column) const {
    return sqlite3_column_type(m_statement, column) == SQLITE_TEXT ? textIn(m_statement, column)
                                                                   : textOf((*this)[column]);
}

void Statement::Finalizer::operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }

Statement::Statement(sqlite3 *database, std::string_view sql) {
    sqlite3_stmt *statement = nullptr;
    m_result = sqlite3_prepare_v3(database, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                                  &statement, nullptr);
    m_statement.reset(statement);
    if (!m_statement)
        return;
    for (int index = 1; index <= sqlite3_bind_parameter_count(statement); ++index)
        m_parameters.emplace_back(sqlite3_bind_parameter_name(statement, index) + 1);
}

int Statement::indexOf(std::string_view name) {
    // Values mostly come in the order of the parameters.
    for (std::size_t tried = 0; tried < m_parameters.size(); ++tried) {
        m_lastParameter = (m_lastParameter + 1) % m_parameters.size();
        if (m_parameters[m_lastParameter] == name)
            return static_cast<int>(m_lastParameter) + 1;
    }
    Q_ASSERT(false);
    return 0;
}

void Statement::bind(Binds binds) {
    m_held.clear();
    m_held.reserve(binds.size());
    m_lastParameter = m_parameters.empty() ? 0 : m_parameters.size() - 1;
    m_result = SQLITE_OK;
    for (const Bind &bind : binds) {
        bindValue(indexOf(bind.name), bind.value);
        if (failed())
            return;
    }
}

void Statement::bindValue(int index, const QVariant &value) {
    sqlite3_stmt *statement = m_statement.get();
    if (value.isNull()) {
        m_result = sqlite3_bind_null(statement, index);
        return;
    }
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
        m_result = sqlite3_bind_int64(statement, index, value.toLongLong());
        return;
    case QMetaType::Double:
        m_result = sqlite3_bind_double(statement, index, value.toDouble());
        return;
    case QMetaType::QByteArray: {
        const QByteArray &bytes = m_held.emplace_back(value.toByteArray());
        m_result = sqlite3_bind_blob64(statement, index, bytes.constData(), static_cast<sqlite3_uint64>(bytes.size()),
                                       SQLITE_STATIC);
        return;
    }
    default: {
        const QByteArray &text = m_held.emplace_back(value.toString().toUtf8());
        m_result = sqlite3_bind_text64(statement, index, text.constData(), static_cast<sqlite3_uint64>(text.size()),
                                       SQLITE_STATIC, SQLITE_UTF8);
        return;
    }
    }
}

bool Statement::next() {
    m_result = sqlite3_step(m_statement.get());
    return m_result == SQLITE_ROW;
}

bool Statement::failed() const { return m_result != SQLITE_OK && m_result != SQLITE_ROW && m_result != SQLITE_DONE; }

void Statement::finish() {
    sqlite3_reset(m_statement.get());
    sqlite3_clear_bindings(m_statement.get());
    m_held.clear();
}

} // namespace desk

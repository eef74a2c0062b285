#include "platform/ado/recordset.h"

#include "platform/ado/criterion.h"

namespace ado {

namespace {

[[noreturn]] void noRow() {
    throw Failure(noCurrentRecord, "There is no current row: the recordset stands before the first or behind the last "
                                   "one, or the row has been deleted.");
}

qint32 keyOf(const Value &value) { return std::get<qint32>(value.held()); }

/// The last row's key (0 without rows) where the keys stand in ascending order, as in a table opened by its name.
std::optional<qint32> lastKeyInOrder(const RowSet &set) {
    qint32 last = 0;
    for (const Row &row : set.rows) {
        const Value &key = row[static_cast<std::size_t>(set.key)];
        if (!key.holds<qint32>() || keyOf(key) <= last)
            return std::nullopt;
        last = keyOf(key);
    }
    return last;
}

} // namespace

QString Field::Name() const { return m_recordset->m_set.columns[static_cast<std::size_t>(m_column)].name; }

::Value Field::Value() const { return m_recordset->currentRow()[static_cast<std::size_t>(m_column)]; }

void Field::SetValue(const ::Value &value) { m_recordset->setValue(m_column, value); }

void Recordset::Open() {
    if (m_open)
        throw Failure(alreadyOpen, "The recordset is open already.");
    m_provider = m_connection->provider();
    m_set = m_provider->select(m_source);
    m_lastKey = m_set.isUpdatable() ? lastKeyInOrder(m_set) : std::nullopt;
    m_position = 0;
    m_onDeleted = false;
    m_edit = Edit::None;
    m_open = true;
}

void Recordset::Close() {
    requireOpen();
    m_open = false;
    m_edit = Edit::None;
    m_set = {};
    m_provider.reset();
}

void Recordset::requireOpen() const {
    if (!m_open)
        throw Failure(objectClosed, "The recordset is not open.");
}

void Recordset::requireWritable() const {
    requireOpen();
    if (m_lockType == LockType::ReadOnly)
        throw Failure(notUpdatable, "The recordset was opened read-only.");
    if (m_lockType == LockType::BatchOptimistic)
        throw Failure(notUpdatable, "Changes are written row by row; batches are not offered.");
    if (!m_set.isUpdatable())
        throw Failure(notUpdatable,
                      "The selection can't be written to: it needs the rows of one table with their key.");
    if (!m_connection->IsOpen() || m_connection->provider() != m_provider)
        throw Failure(objectClosed, "The connection of the recordset has been closed.");
}

bool Recordset::IsEOF() const {
    requireOpen();
    return m_edit != Edit::New && !m_onDeleted && m_position >= m_set.rows.size();
}

bool Recordset::IsBOF() const {
    requireOpen();
    return m_edit != Edit::New && m_set.rows.empty();
}

qint32 Recordset::RecordCount() const {
    requireOpen();
    return static_cast<qint32>(m_set.rows.size());
}

void Recordset::MoveFirst() {
    settle();
    m_onDeleted = false;
    m_position = 0;
    if (m_set.rows.empty())
        noRow();
}

void Recordset::MoveNext() {
    settle();
    if (m_onDeleted) {
        m_onDeleted = false;
        return;
    }
    if (m_position >= m_set.rows.size())
        noRow();
    ++m_position;
}

void Recordset::Find(const QString &criterion) {
    settle();
    const Criterion wanted = Criterion::parse(criterion);
    const auto column = static_cast<std::size_t>(columnOf(wanted.column));
    m_onDeleted = false;
    if (m_lastKey && static_cast<int>(column) == m_set.key && wanted.value.holds<double>())
        skipToKey(std::get<double>(wanted.value.held()));
    while (m_position < m_set.rows.size() && !wanted.holds(m_set.rows[m_position][column]))
        ++m_position;
}

void Recordset::skipToKey(double key) {
    const auto column = static_cast<std::size_t>(m_set.key);
    const auto from = m_set.rows.begin() + static_cast<std::ptrdiff_t>(m_position);
    const auto found = std::lower_bound(from, m_set.rows.end(), key,
                                        [&](const Row &row, double wanted) { return keyOf(row[column]) < wanted; });
    m_position = static_cast<std::size_t>(found - m_set.rows.begin());
    if (found != m_set.rows.end() && keyOf((*found)[column]) != key)
        m_position = m_set.rows.size();
}

void Recordset::AddNew() {
    requireWritable();
    settle();
    m_edit = Edit::New;
    m_edited = Row(m_set.columns.size(), Value::Null{});
    m_assigned.assign(m_set.columns.size(), false);
}

void Recordset::Update() {
    requireOpen();
    if (m_edit == Edit::None)
        return;
    requireWritable();
    if (m_edit == Edit::New) {
        const qint32 key = m_provider->insert(m_set, m_edited, m_assigned);
        m_edited[static_cast<std::size_t>(m_set.key)] = key;
        m_lastKey = m_lastKey && *m_lastKey < key ? std::optional(key) : std::nullopt;
        m_set.rows.push_back(m_edited);
        m_position = m_set.rows.size() - 1;
        m_onDeleted = false;
    } else {
        m_provider->update(m_set, m_set.rows[m_position], m_edited, m_assigned);
        m_set.rows[m_position] = m_edited;
    }
    m_edit = Edit::None;
}

void Recordset::CancelUpdate() {
    requireOpen();
    m_edit = Edit::None;
}

void Recordset::Delete() {
    requireWritable();
    if (m_edit == Edit::New)
        throw Failure(notAllowed, "The new row is not stored yet, so it can't be deleted.");
    m_edit = Edit::None;
    static_cast<void>(currentRow());
    m_provider->remove(m_set, m_set.rows[m_position]);
    m_set.rows.erase(m_set.rows.begin() + static_cast<std::ptrdiff_t>(m_position));
    m_onDeleted = true;
}

void Recordset::Together(const std::function<void()> &changes) {
    requireOpen();
    struct Run {
        std::shared_ptr<Provider> provider;
        ~Run() {
            if (provider)
                Attempt([&] { provider->endRun(); });
        }
    } run{m_provider};
    m_provider->beginRun();
    changes();
    std::exchange(run.provider, nullptr)->endRun();
}

Field Recordset::Fields(const QString &name) { return {shared_from_this(), columnOf(name)}; }

Field Recordset::Fields(int ordinal) {
    requireOpen();
    if (ordinal < 0 || ordinal >= FieldCount())
        throw Failure(itemNotFound, QString("The recordset has no field number %1.").arg(ordinal));
    return {shared_from_this(), ordinal};
}

const Row &Recordset::currentRow() const {
    requireOpen();
    if (m_edit != Edit::None)
        return m_edited;
    if (m_onDeleted || m_position >= m_set.rows.size())
        noRow();
    return m_set.rows[m_position];
}

void Recordset::settle() {
    requireOpen();
    if (m_edit != Edit::None)
        Update();
}

void Recordset::setValue(int column, const Value &value) {
    requireWritable();
    if (column == m_set.key)
        throw Failure(notUpdatable, "The column numbers itself and can't be set.");
    const auto at = static_cast<std::size_t>(column);
    const Value converted = columnValue(m_set.columns[at].type, value);
    if (m_edit == Edit::None) {
        m_edited = currentRow();
        m_assigned.assign(m_set.columns.size(), false);
        m_edit = Edit::Change;
    }
    m_edited[at] = converted;
    m_assigned[at] = true;
}

int Recordset::columnOf(const QString &name) const {
    requireOpen();
    for (std::size_t at = 0; at < m_set.columns.size(); ++at)
        if (m_set.columns[at].name.compare(name, Qt::CaseInsensitive) == 0)
            return static_cast<int>(at);
    throw Failure(itemNotFound,
                  QString("The recordset has no field named \"%1\". The database may be of an older kind.").arg(name));
}

} // namespace ado

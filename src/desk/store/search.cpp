#include "desk/store/search.h"

#include "desk/store/itemcolumns.h"
#include "desk/store/storedtext.h"
#include "platform/value/convert.h"

namespace desk {

namespace {

/// So many matches are counted of each condition that could lead.
constexpr const char *probeEnd = " AND folder = :folder AND arrival > :arrival LIMIT 200)";

std::string notEmpty(const std::string &column) { return column + " <> ''"; }

/// The number that a boolean column holds for a key.
std::optional<double> truthOf(const QString &key) {
    if (key == QLatin1String("true"))
        return 1;
    if (key == QLatin1String("false"))
        return 0;
    return std::nullopt;
}

std::optional<double> numberOf(const QString &key) {
    bool isNumber = false;
    const double number = key.toDouble(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

} // namespace

Search::Search(Connection &connection, FolderId folder, const QList<Condition> &conditions, qint64 arrival)
    : m_folder(folder), m_arrival(arrival) {
    for (const Condition &condition : conditions)
        add(condition);
    const std::size_t leading = leadingClause(connection);
    const bool hasLeader = leading < m_clauses.size();
    std::string order = "i";
    m_sql = "SELECT " + recordColumns();
    if (hasLeader && m_clauses[leading].isProperty) {
        order = "p";
        m_sql += " FROM properties AS p JOIN items AS i ON i.id = p.item WHERE " +
                 propertyTest("p", m_clauses[leading]) + " AND " + notEmpty("p.value_key") + " AND ";
    } else if (hasLeader) {
        const std::string column = "i." + m_clauses[leading].name;
        m_sql += " FROM items AS i WHERE " + column + " = " + bind(m_clauses[leading].key) + " AND " +
                 notEmpty(column) + " AND ";
    } else {
        m_sql += " FROM items AS i WHERE ";
    }
    m_sql += order + ".folder = :folder AND " + order + ".arrival > :arrival";
    m_binds.push_back({"folder", m_folder});
    m_binds.push_back({"arrival", m_arrival});
    for (std::size_t i = 0; i < m_clauses.size(); ++i)
        if (i != leading)
            appendTested(m_clauses[i]);
    m_sql += " ORDER BY " + order + ".arrival";
}

std::string Search::propertyTest(const std::string &alias, const Clause &clause) {
    const std::string ofName = alias + ".name_key = " + bind(clause.nameKey) + " AND ";
    const std::string column = alias + ".value_key";
    if (clause.kind == Condition::Kind::Equal)
        return ofName + column + " = " + bind(clause.key);
    // The order is that of texts, in which 9 stands behind 10: the keys of the name are gone through, in the index.
    return ofName + "CAST(" + column + " AS REAL) >= " + bind(clause.key);
}

std::string Search::bind(const QVariant &value) {
    const std::string &name = m_names.emplace_back("p" + std::to_string(m_names.size()));
    m_binds.push_back({name, value});
    return ":" + name;
}

void Search::add(const Condition &condition) {
    if (condition.kind == Condition::Kind::MayReach) {
        m_clauses.push_back({.name = {},
                             .nameKey = storedText(foldedKey(std::get<QString>(condition.subject))),
                             .key = toDouble(condition.value),
                             .isProperty = true,
                             .canLead = false,
                             .kind = condition.kind});
        return;
    }
    const QString key = keyOf(condition.value);
    const QVariant storedKey = storedText(key);
    if (const auto *name = std::get_if<QString>(&condition.subject)) {
        m_clauses.push_back({.name = {},
                             .nameKey = storedText(foldedKey(*name)),
                             .key = storedKey,
                             .isProperty = true,
                             .canLead = !key.isEmpty()});
        return;
    }
    const ItemColumn &column = itemColumn(std::get<Field>(condition.subject));
    if (column.isIndexed()) {
        m_clauses.push_back({.name = std::string(column.keyName),
                             .nameKey = {},
                             .key = storedKey,
                             .isProperty = false,
                             .canLead = !key.isEmpty()});
    } else if (std::holds_alternative<bool ItemRecord::*>(column.member) ||
               std::holds_alternative<qint32 ItemRecord::*>(column.member)) {
        const bool isBool = std::holds_alternative<bool ItemRecord::*>(column.member);
        const std::optional<double> number = isBool ? truthOf(key) : numberOf(key);
        if (!number) {
            m_isHopeless = true;
            return;
        }
        m_clauses.push_back(
            {.name = std::string(column.name), .nameKey = {}, .key = *number, .isProperty = false, .canLead = false});
    } else {
        m_remaining.append(condition);
    }
}

std::size_t Search::leadingClause(Connection &connection) const {
    std::size_t best = m_clauses.size();
    const auto eligible = std::ranges::count_if(m_clauses, &Clause::canLead);
    // Better than to open every item of the folder.
    if (eligible == 0)
        best = static_cast<std::size_t>(std::ranges::find(m_clauses, Condition::Kind::MayReach, &Clause::kind) -
                                        m_clauses.begin());
    qint64 fewest = std::numeric_limits<qint64>::max();
    for (std::size_t i = 0; i < m_clauses.size(); ++i) {
        const Clause &clause = m_clauses[i];
        if (!clause.canLead)
            continue;
        if (eligible == 1)
            return i;
        std::vector<Bind> binds{{"key", clause.key}, {"folder", m_folder}, {"arrival", m_arrival}};
        std::string sql = "SELECT count(*) FROM (SELECT 1 FROM ";
        if (clause.isProperty) {
            sql += "properties WHERE name_key = :name AND value_key = :key AND " + notEmpty("value_key") + probeEnd;
            binds.push_back({"name", clause.nameKey});
        } else {
            sql += "items WHERE " + clause.name + " = :key AND " + notEmpty(clause.name) + probeEnd;
        }
        qint64 matches = 0;
        connection.each(sql, binds, [&matches](const Row &row) { matches = row.number(0); });
        if (matches < fewest) {
            fewest = matches;
            best = i;
        }
    }
    return best;
}

/// A tested column has a plus sign before it, which changes nothing but keeps the planner from leading with its index.
void Search::appendTested(const Clause &clause) {
    if (!clause.isProperty) {
        m_sql += " AND +i." + clause.name + " = " + bind(clause.key);
        return;
    }
    const std::string ofItem = "SELECT 1 FROM properties AS q WHERE q.item = i.id AND ";
    // The empty text is met by a missing property too.
    if (clause.kind == Condition::Kind::Equal && !clause.canLead)
        m_sql += " AND NOT EXISTS (" + ofItem + "q.name_key = " + bind(clause.nameKey) + " AND q.value_key <> '')";
    else
        m_sql += " AND EXISTS (" + ofItem + propertyTest("q", clause) + " AND q.value_key <> '')";
}

bool Search::holds(const ItemRecord &record) const {
    return std::ranges::all_of(m_remaining, [&record](const Condition &condition) {
        return keyOf(fieldOf(record, itemColumn(std::get<Field>(condition.subject)))) == keyOf(condition.value);
    });
}

} // namespace desk

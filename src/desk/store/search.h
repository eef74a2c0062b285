/// A look-up in one folder, made into statements: which condition leads, which are tested on the way.
#pragma once

#include "desk/store/connection.h"
#include "desk/store/records.h"

#include <deque>

namespace desk {

/// The statement for a list of conditions. Its rows are items in order of arrival, by `recordColumns`; of them those
/// for which `holds` are meant.
class Search {
  public:
    /// Looks which condition has the fewest matches, as far as a short count tells: it leads.
    Search(Connection &connection, FolderId folder, const QList<Condition> &conditions, qint64 arrival);

    /// Whether it is clear already that no item meets the conditions, such as a text as an item's importance.
    [[nodiscard]] bool isHopeless() const { return m_isHopeless; }
    [[nodiscard]] const std::string &sql() const { return m_sql; }
    [[nodiscard]] Binds binds() const { return m_binds; }
    /// Whether a row meets the conditions that no column can be asked for.
    [[nodiscard]] bool holds(const ItemRecord &record) const;

  private:
    struct Clause {
        std::string name; ///< the column, for a field
        QVariant nameKey; ///< the folded name, for a custom property
        QVariant key;
        bool isProperty = false;
        bool canLead = false;
        Condition::Kind kind = Condition::Kind::Equal;
    };

    void add(const Condition &condition);
    [[nodiscard]] std::size_t leadingClause(Connection &connection) const;
    /// The test of a property's key, which is that of a column of the alias.
    std::string propertyTest(const std::string &alias, const Clause &clause);
    void appendTested(const Clause &clause);
    std::string bind(const QVariant &value);

    FolderId m_folder;
    qint64 m_arrival;
    std::vector<Clause> m_clauses;
    QList<Condition> m_remaining;
    bool m_isHopeless = false;
    std::string m_sql;
    std::vector<Bind> m_binds;
    /// What the names in `m_binds` point to.
    std::deque<std::string> m_names;
};

} // namespace desk

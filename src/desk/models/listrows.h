/// What the windows of the desk observe: its folders and items as models of Qt, which fetch what comes into view and
/// tell what has changed, whoever changed it. They read the stores and never write them; what people do goes through
/// the object model.
#pragma once

#include "desk/store/itemlist.h"

#include <vector>

namespace desk {

/// One row of a list of which more than its number is known.
struct ListRow {
    int position = 0;
    ItemMark mark{};
    /// What the row shows; read when it is first asked for.
    std::optional<ItemRecord> record{};
};

/// The rows of a list that are known, among those that are only counted.
///
/// Invariant: ascending by position, and in the order of the list.
class ListRows {
  public:
    using Rows = std::vector<ListRow>;
    /// Rows that stand next to each other: from the first to before the last, as places in `known()`.
    struct Run {
        std::size_t begin = 0;
        std::size_t end = 0;
    };

    [[nodiscard]] int count() const { return m_count; }
    [[nodiscard]] const Rows &known() const { return m_rows; }
    [[nodiscard]] ListRow *at(int position);
    /// The known rows around a position, as places; the last place where there is none behind it.
    [[nodiscard]] std::size_t placeOf(int position) const;
    [[nodiscard]] std::vector<Run> runs() const;

    /// Forgets everything and counts so many rows.
    void reset(int count);
    /// Makes rows known that are counted already. REQUIRES: none of them is known; ascending.
    void learn(Rows rows);
    /// Forgets what is known of rows that `isKept` refuses.
    void forget(const std::function<bool(const ListRow &)> &isKept);

    /// New rows at a position, known or only counted; those behind move down.
    void insert(int position, Rows rows);
    void insertUnknown(int position, int count);
    void remove(int position, int count);
    /// REQUIRES: both are known, and so is all between them.
    void move(int from, int to);

  private:
    void shift(std::size_t place, int by);

    int m_count = 0;
    Rows m_rows;
};

} // namespace desk

#include "desk/models/listrows.h"

namespace desk {

namespace {

auto iteratorAt(ListRows::Rows &rows, std::size_t place) { return rows.begin() + static_cast<std::ptrdiff_t>(place); }

} // namespace

std::size_t ListRows::placeOf(int position) const {
    const auto at = std::ranges::lower_bound(m_rows, position, {}, &ListRow::position);
    return static_cast<std::size_t>(at - m_rows.begin());
}

ListRow *ListRows::at(int position) {
    const std::size_t place = placeOf(position);
    return place < m_rows.size() && m_rows[place].position == position ? &m_rows[place] : nullptr;
}

std::vector<ListRows::Run> ListRows::runs() const {
    std::vector<Run> runs;
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (i == 0 || m_rows[i - 1].position + 1 != m_rows[i].position)
            runs.push_back({.begin = i, .end = i});
        runs.back().end = i + 1;
    }
    return runs;
}

void ListRows::reset(int count) {
    m_count = count;
    m_rows.clear();
}

void ListRows::learn(Rows rows) {
    if (rows.empty())
        return;
    const auto place = iteratorAt(m_rows, placeOf(rows.front().position));
    m_rows.insert(place, std::make_move_iterator(rows.begin()), std::make_move_iterator(rows.end()));
}

void ListRows::forget(const std::function<bool(const ListRow &)> &isKept) {
    std::erase_if(m_rows, [&isKept](const ListRow &row) { return !isKept(row); });
}

void ListRows::shift(std::size_t place, int by) {
    for (; place < m_rows.size(); ++place)
        m_rows[place].position += by;
    m_count += by;
}

void ListRows::insert(int position, Rows rows) {
    insertUnknown(position, static_cast<int>(rows.size()));
    for (ListRow &row : rows)
        row.position = position++;
    learn(std::move(rows));
}

void ListRows::insertUnknown(int position, int count) { shift(placeOf(position), count); }

void ListRows::remove(int position, int count) {
    const auto begin = iteratorAt(m_rows, placeOf(position));
    const auto end = iteratorAt(m_rows, placeOf(position + count));
    m_rows.erase(begin, end);
    shift(placeOf(position), -count);
}

void ListRows::move(int from, int to) {
    const auto source = iteratorAt(m_rows, placeOf(from));
    const auto target = iteratorAt(m_rows, placeOf(to));
    const auto [first, last] = std::minmax(source, target);
    if (from < to)
        std::rotate(source, source + 1, target + 1);
    else
        std::rotate(target, source, source + 1);
    int position = std::min(from, to);
    for (auto row = first; row != last + 1; ++row)
        row->position = position++;
}

} // namespace desk

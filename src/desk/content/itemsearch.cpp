#include "desk/content/itemsearch.h"

#include "desk/content/fields.h"
#include "platform/value/convert.h"

namespace desk {
namespace {

bool isDateField(const StandardField &field) { return field.read(ItemRecord()).holds<DateTime>(); }

/// The text that writes a literal, as the store compares it with values of every kind.
QString textOf(const Value &literal) {
    if (literal.holds<bool>())
        return toBool(literal) ? QStringLiteral("true") : QStringLiteral("false");
    if (literal.holds<double>())
        return QLocale::c().toString(toDouble(literal), 'g', QLocale::FloatingPointShortest);
    return toText(literal);
}

/// The store's form of a condition, where it has one.
std::optional<Condition> lookUp(const FilterCondition &condition) {
    const StandardField *field = standardField(condition.field);
    if (const std::optional<double> least = condition.least(); least && !field)
        return Condition{condition.field, *least, Condition::Kind::MayReach};
    if (condition.comparison != FilterCondition::Operator::Equal)
        return std::nullopt;
    if (!field)
        return Condition{condition.field, textOf(condition.literal)};
    if (!field->field || isDateField(*field))
        return std::nullopt;
    return Condition{*field->field, textOf(condition.literal)};
}

Value valueOf(Store &store, const ItemRecord &item, const QString &name) {
    if (const StandardField *field = standardField(name))
        return field->read(item);
    for (const Property &property : store.properties(item.id)) {
        if (property.name.compare(name, Qt::CaseInsensitive) == 0)
            return property.value;
    }
    return {};
}

} // namespace

std::optional<ItemRecord> findItem(Store &store, FolderId folder, const Filter &filter, qint64 arrival) {
    QList<Condition> lookedUp;
    Filter compared;
    for (const FilterCondition &condition : filter) {
        const std::optional<Condition> known = lookUp(condition);
        if (known)
            lookedUp.append(*known);
        if (!known || known->kind == Condition::Kind::MayReach)
            compared.append(condition);
    }
    for (;;) {
        std::optional<ItemRecord> item = store.find(folder, lookedUp, arrival);
        if (!item)
            return std::nullopt;
        const bool holds = std::all_of(compared.begin(), compared.end(), [&](const FilterCondition &condition) {
            return condition.holds(valueOf(store, *item, condition.field));
        });
        if (holds)
            return item;
        arrival = item->arrival;
    }
}

} // namespace desk

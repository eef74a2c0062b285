#include "orvelle/core/fieldchange.h"

#include "platform/value/convert.h"

namespace {

bool fncIsNumber(const Value &value) {
    return value.holds<bool>() || value.holds<qint16>() || value.holds<qint32>() || value.holds<double>() ||
           value.holds<Currency>() || value.holds<DateTime>();
}

} // namespace

bool fncValueChanged(const Value &stored, const Value &value) {
    if (value.isNull())
        return false;
    if (stored.isNull())
        return true;
    if (stored.holds<Currency>() && value.holds<Currency>())
        return stored != value;
    if (fncIsNumber(stored) && fncIsNumber(value))
        return toDouble(stored) != toDouble(value);
    if (fncIsNumber(stored) || fncIsNumber(value))
        return AttemptOr([&] { return toDouble(stored) != toDouble(value); }, true);
    return toText(stored) != toText(value);
}

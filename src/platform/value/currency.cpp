#include "platform/value/currency.h"

#include "platform/value/convert.h"
#include "platform/value/failure.h"

Currency Currency::fromDouble(double amount) {
    const double scaled = roundHalfEven(amount * 10000.0);
    if (!(std::abs(scaled) < 9.2233720368547758e18))
        throw Failure(failures::overflow);
    return Currency(static_cast<qint64>(scaled));
}

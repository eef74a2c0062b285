#include "orvelle/reference/recordlist.h"

const Value &fncColumn(const ValueList &row, int intColumn) {
    if (intColumn >= row.size())
        throw Failure(failures::subscriptOutOfRange);
    return row[intColumn];
}

/// The two-dimensional shape in which lists meet list controls: one entry a row, each a list of its columns.
#pragma once

#include "platform/value/value.h"

using ValueRows = QList<ValueList>;

/// The types that settings and properties are read and written in.
#pragma once

#include <QtGlobal>

namespace valuetype {
constexpr qint32 integer = 2;
constexpr qint32 date = 7;
constexpr qint32 text = 8;
constexpr qint32 boolean = 11;
} // namespace valuetype

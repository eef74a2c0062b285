/// How texts of a database are equal, whichever engine holds them.
#pragma once

#include <QStringView>

namespace ado {

/// Whether two texts differ in case at most.
inline bool equalText(QStringView left, QStringView right) { return left.compare(right, Qt::CaseInsensitive) == 0; }

} // namespace ado

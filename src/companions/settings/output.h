/// What the commands write.
#pragma once

#include <QByteArray>

namespace settings {

/// To standard output, as it is.
void print(const QByteArray &text);

} // namespace settings

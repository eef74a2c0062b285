/// The named characters of HTML.
#pragma once

#include <QStringView>

namespace desk {

/// The character that "&name;" stands for; 0 when there is none of that name.
char16_t namedEntity(QStringView name);

} // namespace desk

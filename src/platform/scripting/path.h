/// Path texts and the machine's own paths.
///
/// Path texts have backslashes between their parts. The file-system object, and a component that opens a file, are the
/// only places that turn them into the machine's own; a file name with a backslash in it can't be named.
#pragma once

#include <QString>

namespace scripting {

/// Both separators become the machine's own.
QString nativePath(QString path);

/// The path text of a machine's path.
QString pathText(QString path);

} // namespace scripting

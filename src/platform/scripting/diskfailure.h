/// The machine's error numbers as failures.
#pragma once

#include "platform/value/failure.h"

#include <QString>

namespace scripting {

/// The failure for an error number of the machine.
///
/// \param action  what could not be done, such as "write".
/// \param path  the path that it was about.
/// \param noEntry  53 where the file itself was looked for, 76 where only its folder can be missing.
Failure diskFailure(int error, const QString &action, const QString &path, qint32 noEntry = failures::pathNotFound);

} // namespace scripting

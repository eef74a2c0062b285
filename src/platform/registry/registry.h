/// The registry: texts of one person under keys such as `HKCU\Software\...\Name`, kept in one file.
#pragma once

#include "platform/value/processlocal.h"

#include <QString>

#include <optional>

namespace registry {

/// The file of this copy in place of `file()`'s rule, when not empty.
extern ProcessLocal<QString> fileOverride;

/// $ORVELLE_PROFILE/registry.ini, or registry.ini in the person's own configuration folder for this program.
QString file();

/// The text under a full value path; keys and names match without regard to case. Nothing for a missing value.
std::optional<QString> read(const QString &path);

/// Stores a text under a full value path. Writers of several processes take turns, and the file is replaced as a whole,
/// so that a reader or a crash never meets half of it. Fails with 61 or 70 when it can't be written.
void write(const QString &path, const QString &text);

/// Removes a value; a missing one is no failure.
void remove(const QString &path);

} // namespace registry

/// The settings program: reads and writes the settings of an installation from a script.
///
/// This header: the settings that the system knows, for the help and for the checks. The table takes any other name
/// too.
#pragma once

#include <QString>

#include <optional>
#include <span>

namespace settings {

struct Known {
    enum Kind {
        Text,
        Number, ///< a 16-bit whole number
        Moment, ///< a time of day
        Region, ///< a language and a country
    };
    const char *name;
    Kind kind;
    const char *meaning;
};

std::span<const Known> knownSettings();

/// By its name without regard to case; nullptr for another name.
const Known *findKnown(const QString &name);

/// What is wrong with a value for the setting, as a sentence; nothing when it can be stored.
std::optional<QString> problemWith(const QString &name, const QString &value);

} // namespace settings

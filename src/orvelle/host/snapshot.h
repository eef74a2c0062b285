/// Several things about one object, asked at once and held by whoever asked.
#pragma once

#include "orvelle/host/handle.h"

#include <concepts>

namespace host {

/// What a snapshot is to hold: properties of the object, and of objects that are met on the way from it.
class Questions {
  public:
    Questions(std::initializer_list<const char *> names) { members(names); }
    Questions &members(std::initializer_list<const char *> names) {
        for (const char *name : names)
            m_paths.push_back({{QString::fromLatin1(name), {}}});
        return *this;
    }
    /// How many custom properties an item has.
    Questions &propertyCount() {
        m_paths.push_back({{"UserProperties", {}}, {"Count", {}}});
        return *this;
    }
    /// The values of an item's custom properties, by their names.
    Questions &properties(const QStringList &names) {
        for (const QString &name : names)
            m_paths.push_back({{"UserProperties", {}}, {"Find", {name}}, {"Value", {}}});
        return *this;
    }

    [[nodiscard]] const std::vector<automation::Path> &paths() const { return m_paths; }

  private:
    std::vector<automation::Path> m_paths;
};

/// The object's answers as it gave them at one moment, as an object of the same kind: one question where the host is
/// another process. What a question failed with, reading it from the snapshot fails with; what was not asked for, and
/// any writing, fails with 438. A missing custom property is found, and its value fails with 91. Nothing gives Nothing.
automation::ObjectPtr snapshotOf(const Handle &of, const Questions &questions);

/// The same as a typed handle: `host::snapshot(mail, {"Subject", "Body"}).Subject()`.
template <std::derived_from<Handle> H>
[[nodiscard]] H snapshot(const H &of, const Questions &questions) {
    return H(snapshotOf(of, questions));
}

} // namespace host

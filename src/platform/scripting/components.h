/// Components by their names, as `CreateObject` makes them.
#pragma once

#include "automation/object.h"
#include "platform/value/processlocal.h"

#include <QHash>
#include <QString>

#include <functional>

namespace scripting {

/// Makes the object of a component.
using ComponentFactory = std::function<automation::ObjectPtr()>;

/// The components that this copy of the program knows, by name without regard to case.
///
/// A component is installed when the registry says so: "1" under `HKCU\Software\Classes\NAME\Installed` is yes and "0"
/// is no; without a value it is as its registration says.
class Components {
  public:
    /// \param installed  whether it is there on a machine whose registry has no word on it.
    void add(const QString &progId, ComponentFactory factory, bool installed = true);
    [[nodiscard]] static QString installedKey(const QString &progId);
    /// Writes the registry's word.
    static void setInstalled(const QString &progId, bool installed);
    /// Whether the registry says no.
    [[nodiscard]] static bool isRemoved(const QString &progId);

    /// Fails with 429 for a component that is not known or not installed.
    [[nodiscard]] automation::ObjectPtr create(const QString &progId) const;

  private:
    struct Entry {
        ComponentFactory factory;
        bool installed = true;
    };
    QHash<QString, Entry> m_entries;
};
extern ProcessLocal<Components> components;

/// A new object of a component of this copy. Fails with 429.
automation::ObjectPtr CreateObject(const QString &progId);

} // namespace scripting

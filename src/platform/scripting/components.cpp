#include "platform/scripting/components.h"

#include "platform/registry/registry.h"

namespace scripting {

ProcessLocal<Components> components;

void Components::add(const QString &progId, ComponentFactory factory, bool installed) {
    m_entries.insert(progId.toCaseFolded(), {std::move(factory), installed});
}

QString Components::installedKey(const QString &progId) {
    return QStringLiteral("HKCU\\Software\\Classes\\%1\\Installed").arg(progId);
}

void Components::setInstalled(const QString &progId, bool installed) {
    registry::write(installedKey(progId), installed ? QStringLiteral("1") : QStringLiteral("0"));
}

bool Components::isRemoved(const QString &progId) {
    return registry::read(installedKey(progId)) == QStringLiteral("0");
}

automation::ObjectPtr Components::create(const QString &progId) const {
    const auto entry = m_entries.constFind(progId.toCaseFolded());
    const std::optional<QString> word = registry::read(installedKey(progId));
    if (entry == m_entries.constEnd() || !(word ? *word == QStringLiteral("1") : entry->installed))
        throw Failure(failures::cannotCreateObject,
                      QStringLiteral("%1: %2 is not installed on this machine.")
                          .arg(Failure::standardDescription(failures::cannotCreateObject), progId));
    return entry->factory();
}

automation::ObjectPtr CreateObject(const QString &progId) { return components.get().create(progId); }

} // namespace scripting

#include "desk/objects/openwindows.h"

#include "desk/objects/commandbars.h"
#include "desk/objects/explorer.h"
#include "desk/objects/explorers.h"
#include "desk/objects/inspector.h"
#include "desk/objects/inspectors.h"
#include "desk/objects/item.h"

namespace desk {

using objects::Explorer;
using objects::Inspector;
using objects::SessionObject;

Windows::Windows() = default;

Windows::~Windows() {
    for (const std::shared_ptr<Explorer> &explorer : std::as_const(m_explorers))
        explorer->dropWindow();
    for (const std::shared_ptr<Inspector> &inspector : std::as_const(m_inspectors))
        inspector->dropWindow();
}

std::shared_ptr<objects::Explorers> Windows::explorerCollection(const std::weak_ptr<Session> &session) {
    if (!m_explorerCollection)
        m_explorerCollection = std::make_shared<objects::Explorers>(session);
    return m_explorerCollection;
}

std::shared_ptr<objects::Inspectors> Windows::inspectorCollection(const std::weak_ptr<Session> &session) {
    if (!m_inspectorCollection)
        m_inspectorCollection = std::make_shared<objects::Inspectors>(session);
    return m_inspectorCollection;
}

void Windows::add(const std::shared_ptr<Explorer> &explorer) {
    m_explorers.append(explorer);
    m_order.append(explorer);
    Q_EMIT m_notices.explorerOpened(explorer);
}

void Windows::add(const std::shared_ptr<Inspector> &inspector) {
    m_inspectors.append(inspector);
    m_order.append(inspector);
    Q_EMIT m_notices.inspectorOpened(inspector);
}

/// REQUIRES: the caller holds the window.
void Windows::remove(SessionObject &window) {
    const auto isIt = [&](const auto &each) { return each.get() == &window; };
    m_explorers.removeIf(isIt);
    m_inspectors.removeIf(isIt);
    if (m_order.removeIf(isIt) > 0)
        Q_EMIT m_notices.closed(window);
}

void Windows::bringToFront(SessionObject &window) {
    const auto place =
        std::find_if(m_order.begin(), m_order.end(), [&](const auto &each) { return each.get() == &window; });
    if (place == m_order.end() || place + 1 == m_order.end())
        return;
    std::rotate(place, place + 1, m_order.end());
    Q_EMIT m_notices.cameToFront(window);
}

template <class T>
std::shared_ptr<T> Windows::frontMost() const {
    for (auto each = m_order.crbegin(); each != m_order.crend(); ++each) {
        if (auto window = std::dynamic_pointer_cast<T>(*each))
            return window;
    }
    return nullptr;
}

std::shared_ptr<SessionObject> Windows::front() const { return frontMost<SessionObject>(); }
std::shared_ptr<Explorer> Windows::frontExplorer() const { return frontMost<Explorer>(); }
std::shared_ptr<Inspector> Windows::frontInspector() const { return frontMost<Inspector>(); }

std::shared_ptr<Inspector> Windows::inspectorOf(const objects::Item &item) const {
    for (const std::shared_ptr<Inspector> &inspector : m_inspectors) {
        if (inspector->shows(item))
            return inspector;
    }
    return nullptr;
}

void Windows::clientGone(automation::ClientNumber client) {
    m_dialogs.removeIf([](const std::weak_ptr<OpenDialog> &dialog) { return dialog.expired(); });
    const auto dialogs = m_dialogs;
    for (const std::weak_ptr<OpenDialog> &each : dialogs) {
        const std::shared_ptr<OpenDialog> dialog = each.lock();
        if (dialog && dialog->client == client)
            dialog->close();
    }
    for (const std::shared_ptr<Explorer> &explorer : std::as_const(m_explorers))
        explorer->bars().removeOf(client);
    for (const std::shared_ptr<Inspector> &inspector : std::as_const(m_inspectors))
        inspector->bars().removeOf(client);
}

void Windows::closeAll() {
    constexpr int saveChanges = 0;
    const auto inspectors = m_inspectors;
    for (auto each = inspectors.crbegin(); each != inspectors.crend(); ++each)
        Attempt([&] { (*each)->Close(saveChanges); });
    const auto explorers = m_explorers;
    for (auto each = explorers.crbegin(); each != explorers.crend(); ++each)
        Attempt([&] { (*each)->Close(); });
}

} // namespace desk

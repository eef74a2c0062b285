#include "desk/objects/commandbarbutton.h"

#include "desk/objects/commandbarcontrols.h"

namespace desk::objects {

CommandBarButton::CommandBarButton(std::weak_ptr<desk::Session> session, int id,
                                   std::weak_ptr<CommandBarControls> owner, std::shared_ptr<BarNotices> notices)
    : SessionObject(std::move(session)), m_id(id), m_owner(std::move(owner)), m_notices(std::move(notices)) {}

CommandBarButton::CommandBarButton(std::weak_ptr<desk::Session> session, int id, QString caption,
                                   std::function<void()> command, std::shared_ptr<BarNotices> notices)
    : SessionObject(std::move(session)), m_id(id), m_notices(std::move(notices)), m_command(std::move(command)),
      m_client(0), m_caption(std::move(caption)), m_isBuiltIn(true) {}

void CommandBarButton::tellChanged() {
    // Whoever is told may let go of the bar.
    if (const std::shared_ptr<BarNotices> notices = m_notices)
        Q_EMIT notices->buttonChanged(*this);
}

void CommandBarButton::Execute() {
    const auto alive = shared_from_this();
    bool isCancelled = false;
    Q_EMIT Click(automation::wrap(alive), &isCancelled);
    if (!isCancelled && m_command)
        m_command();
}

void CommandBarButton::Delete(const Value & /*Temporary*/) {
    if (m_isBuiltIn)
        throw Failure(failures::invalidCall);
    const auto alive = shared_from_this();
    const auto owner = m_owner.lock();
    if (!owner || !owner->remove(*this))
        throw Failure(failures::disconnected);
}

} // namespace desk::objects

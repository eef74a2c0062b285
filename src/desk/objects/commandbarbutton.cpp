#include "desk/objects/commandbarbutton.h"

#include "desk/objects/commandbarcontrols.h"

namespace desk::objects {

CommandBarButton::CommandBarButton(std::weak_ptr<desk::Session> session, int id,
                                   std::weak_ptr<CommandBarControls> owner)
    : SessionObject(std::move(session)), m_id(id), m_owner(std::move(owner)) {}

CommandBarButton::CommandBarButton(std::weak_ptr<desk::Session> session, int id, QString caption,
                                   std::function<void()> command)
    : SessionObject(std::move(session)), m_id(id), m_command(std::move(command)), m_client(0),
      m_caption(std::move(caption)), m_isBuiltIn(true) {}

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

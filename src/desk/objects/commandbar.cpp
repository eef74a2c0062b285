#include "desk/objects/commandbar.h"

#include "desk/objects/commandbarcontrols.h"
#include "desk/objects/commandbars.h"

namespace desk::objects {

CommandBar::CommandBar(std::weak_ptr<desk::Session> session, QString name, int position,
                       std::weak_ptr<CommandBars> owner)
    : SessionObject(session), m_name(std::move(name)), m_position(position), m_owner(std::move(owner)),
      m_controls(std::make_shared<CommandBarControls>(std::move(session))) {}

Value CommandBar::Controls(const Value &Index) {
    return Index.isMissing() ? Value(automation::wrap(m_controls)) : m_controls->Item(Index);
}

void CommandBar::Delete() {
    const auto alive = shared_from_this();
    const auto owner = m_owner.lock();
    if (!owner || !owner->remove(*this))
        throw Failure(failures::disconnected);
}

} // namespace desk::objects

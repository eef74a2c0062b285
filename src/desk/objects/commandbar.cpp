#include "desk/objects/commandbar.h"

#include "desk/objects/commandbarcontrols.h"
#include "desk/objects/commandbars.h"

namespace desk::objects {

CommandBar::CommandBar(std::weak_ptr<desk::Session> session, QString name, int position,
                       std::weak_ptr<CommandBars> owner, std::shared_ptr<BarNotices> notices)
    : SessionObject(session), m_name(std::move(name)), m_position(position), m_owner(std::move(owner)),
      m_notices(std::move(notices)),
      m_controls(std::make_shared<CommandBarControls>(std::move(session), *this, m_notices)) {}

// A client may hold the buttons longer.
CommandBar::~CommandBar() { m_controls->detach(); }

void CommandBar::detach() {
    m_notices.reset();
    m_controls->detach();
}

void CommandBar::tellChanged() {
    // Whoever is told may let go of the bar.
    if (const std::shared_ptr<BarNotices> notices = m_notices)
        Q_EMIT notices->barChanged(*this);
}

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

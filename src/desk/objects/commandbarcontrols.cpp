#include "desk/objects/commandbarcontrols.h"

#include "desk/objects/commandbarbutton.h"
#include "platform/value/convert.h"

namespace desk::objects {

CommandBarControls::CommandBarControls(std::weak_ptr<desk::Session> session, const CommandBar &bar,
                                       std::shared_ptr<BarNotices> notices)
    : SessionObject(std::move(session)), m_bar(&bar), m_notices(std::move(notices)) {}

void CommandBarControls::detach() {
    m_bar = nullptr;
    m_notices.reset();
    for (const auto &button : std::as_const(m_buttons))
        button->detach();
}

Value CommandBarControls::Item(const Value &Index) {
    if (!Index.isText())
        return automation::wrap(m_buttons.at(positionFrom(Index, m_buttons.size())));
    for (const auto &button : std::as_const(m_buttons)) {
        if (button->caption().compare(toText(Index), Qt::CaseInsensitive) == 0)
            return automation::wrap(button);
    }
    throw Failure(failures::invalidCall);
}

Value CommandBarControls::Add(const Value &Type, const Value &Id, const Value & /*Parameter*/, const Value &Before,
                              const Value & /*Temporary*/) {
    constexpr int buttonType = 1;
    if ((Type.isMissing() ? buttonType : toInt32(Type)) != buttonType)
        throw Failure(failures::invalidCall);
    const auto button = std::make_shared<CommandBarButton>(weakSession(), Id.isMissing() ? 1 : toInt32(Id),
                                                           self<CommandBarControls>(), m_notices);
    const qsizetype place = Before.isMissing() ? m_buttons.size() : positionFrom(Before, m_buttons.size());
    m_buttons.insert(place, button);
    if (const std::shared_ptr<BarNotices> notices = m_notices)
        Q_EMIT notices->buttonAdded(*m_bar, button, place);
    return automation::wrap(button);
}

bool CommandBarControls::remove(const CommandBarButton &button) {
    const auto place = std::ranges::find(m_buttons, &button, &std::shared_ptr<CommandBarButton>::get);
    if (place == m_buttons.end())
        return false;
    const std::shared_ptr<CommandBarButton> removed = *place;
    m_buttons.erase(place);
    removed->detach();
    if (const std::shared_ptr<BarNotices> notices = m_notices)
        Q_EMIT notices->buttonRemoved(*removed);
    return true;
}

void CommandBarControls::removeOf(automation::ClientNumber client) {
    const auto buttons = m_buttons;
    for (const auto &button : buttons) {
        if (button->client() == client)
            remove(*button);
    }
}

} // namespace desk::objects

#include "desk/objects/commandbarcontrols.h"

#include "desk/objects/commandbarbutton.h"
#include "platform/value/convert.h"

namespace desk::objects {

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
    const auto button =
        std::make_shared<CommandBarButton>(weakSession(), Id.isMissing() ? 1 : toInt32(Id), self<CommandBarControls>());
    const qsizetype place = Before.isMissing() ? m_buttons.size() : positionFrom(Before, m_buttons.size());
    m_buttons.insert(place, button);
    return automation::wrap(button);
}

bool CommandBarControls::remove(const CommandBarButton &button) {
    return m_buttons.removeIf([&](const auto &each) { return each.get() == &button; }) > 0;
}

void CommandBarControls::removeOf(automation::ClientNumber client) {
    m_buttons.removeIf([&](const auto &each) { return each->client() == client; });
}

} // namespace desk::objects

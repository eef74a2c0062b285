#include "desk/objects/commandbars.h"

#include "desk/objects/commandbar.h"
#include "desk/objects/commandbarbutton.h"
#include "desk/objects/commandbarcontrols.h"
#include "platform/value/convert.h"

namespace desk::objects {

Value CommandBars::Item(const Value &Index) {
    if (!Index.isText())
        return automation::wrap(m_bars.at(positionFrom(Index, m_bars.size())));
    for (const auto &bar : std::as_const(m_bars)) {
        if (bar->name().compare(toText(Index), Qt::CaseInsensitive) == 0)
            return automation::wrap(bar);
    }
    throw Failure(failures::invalidCall);
}

Value CommandBars::Add(const Value &Name, const Value &Position, const Value & /*MenuBar*/,
                       const Value & /*Temporary*/) {
    constexpr int floating = 4;
    const QString name = Name.isMissing() ? QStringLiteral("Custom %1").arg(m_bars.size() + 1) : toText(Name);
    const auto bar = std::make_shared<CommandBar>(
        weakSession(), name, Position.isMissing() ? floating : toInt32(Position), self<CommandBars>(), m_notices);
    m_bars.append(bar);
    Q_EMIT m_notices->barAdded(bar);
    return automation::wrap(bar);
}

Value CommandBars::FindControl(const Value &Type, const Value &Id, const Value &Tag, const Value & /*Visible*/) {
    const auto matches = [&](const std::shared_ptr<CommandBarButton> &button) {
        return (Type.isMissing() || toInt32(Type) == button->type()) &&
               (Id.isMissing() || toInt32(Id) == button->id()) &&
               (Tag.isMissing() || toText(Tag) == button->property("Tag").toString());
    };
    QList<std::shared_ptr<CommandBarButton>> buttons = m_commands;
    for (const auto &bar : std::as_const(m_bars))
        buttons += bar->buttons().buttons();
    const auto found = std::find_if(buttons.begin(), buttons.end(), matches);
    return found == buttons.end() ? Value::nothing() : Value(automation::wrap(*found));
}

void CommandBars::addCommand(int id, const QString &caption, std::function<void()> command) {
    m_commands.append(std::make_shared<CommandBarButton>(weakSession(), id, caption, std::move(command), m_notices));
}

bool CommandBars::remove(const CommandBar &bar) {
    const auto place = std::ranges::find(m_bars, &bar, &std::shared_ptr<CommandBar>::get);
    if (place == m_bars.end())
        return false;
    const std::shared_ptr<CommandBar> removed = *place;
    m_bars.erase(place);
    removed->detach();
    Q_EMIT m_notices->barRemoved(*removed);
    return true;
}

void CommandBars::removeOf(automation::ClientNumber client) {
    const auto bars = m_bars;
    for (const auto &bar : bars) {
        if (bar->client() == client)
            remove(*bar);
        else
            bar->buttons().removeOf(client);
    }
}

} // namespace desk::objects

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
        weakSession(), name, Position.isMissing() ? floating : toInt32(Position), self<CommandBars>());
    m_bars.append(bar);
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
    m_commands.append(std::make_shared<CommandBarButton>(weakSession(), id, caption, std::move(command)));
}

bool CommandBars::remove(const CommandBar &bar) {
    return m_bars.removeIf([&](const auto &each) { return each.get() == &bar; }) > 0;
}

void CommandBars::removeOf(automation::ClientNumber client) {
    m_bars.removeIf([&](const auto &each) { return each->client() == client; });
    for (const auto &bar : std::as_const(m_bars))
        bar->buttons().removeOf(client);
}

} // namespace desk::objects

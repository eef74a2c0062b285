#include "desk/objects/commandbars.h"

#include "platform/value/convert.h"

namespace desk::objects {
namespace {

int numberOr(const Value &value, int otherwise) { return value.isMissing() ? otherwise : toInt32(value); }

} // namespace

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
    if (numberOr(Type, buttonType) != buttonType)
        throw Failure(failures::invalidCall);
    const auto button = std::make_shared<CommandBarButton>(weakSession(), numberOr(Id, 1), self<CommandBarControls>());
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
    const auto bar =
        std::make_shared<CommandBar>(weakSession(), name, numberOr(Position, floating), self<CommandBars>());
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

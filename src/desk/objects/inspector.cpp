#include "desk/objects/inspector.h"

#include "desk/objects/commandbars.h"
#include "desk/objects/item.h"
#include "desk/objects/openwindows.h"
#include "desk/objects/session.h"

namespace desk::objects {
namespace {

/// The commands that every item's window has, by their fixed numbers.
constexpr int saveCommand = 3;
constexpr int printCommand = 4;
constexpr int printButton = 2521;
constexpr int editCommand = 3273;

} // namespace

Inspector::Inspector(std::weak_ptr<desk::Session> session, std::shared_ptr<Item> item)
    : InspectorEvents(session), m_item(std::move(item)),
      m_bars(std::make_shared<objects::CommandBars>(std::move(session))) {
    const std::weak_ptr<Item> shown = m_item;
    m_bars->addCommand(saveCommand, QStringLiteral("Save"), [shown] {
        if (const auto open = shown.lock())
            open->Save();
    });
    m_bars->addCommand(printCommand, QStringLiteral("Print..."), {});
    m_bars->addCommand(printButton, QStringLiteral("Print"), {});
    m_bars->addCommand(editCommand, QStringLiteral("Edit"), {});
    QObject::connect(m_item.get(), &Item::PropertyChange, this, &Inspector::tellChanged);
    QObject::connect(m_item.get(), &Item::CustomPropertyChange, this, &Inspector::tellChanged);
}

Inspector::~Inspector() = default;

void Inspector::tellChanged() {
    const std::shared_ptr<desk::Session> open = weakSession().lock();
    if (!open || !m_isOpen)
        return;
    if (const QString standing = caption(); std::exchange(m_caption, standing) != standing)
        m_window.setCaption(standing);
    Q_EMIT open->windows().notices().itemChanged(*this);
}

Value Inspector::currentItem() const { return automation::wrap(m_item); }

QString Inspector::caption() const {
    const QString subject = AttemptOr([&] { return m_item->subject(); }, QString());
    return subject.isEmpty() ? QStringLiteral("Untitled") : subject;
}

bool Inspector::shows(const Item &item) const {
    if (m_item.get() == &item)
        return true;
    const auto entryId = [](const Item &each) { return AttemptOr([&] { return each.entryId(); }, QString()); };
    const QString shown = entryId(*m_item);
    return !shown.isEmpty() && shown == entryId(item);
}

Value Inspector::CommandBars(const Value &Index) {
    return Index.isMissing() ? Value(automation::wrap(m_bars)) : m_bars->Item(Index);
}

void Inspector::Display() {
    const auto alive = shared_from_this();
    Activate();
    m_caption = caption();
    if (m_window.show(session()->windowFactory(), *this))
        Q_EMIT m_item->Read();
}

void Inspector::Activate() {
    const std::shared_ptr<desk::Session> open = session();
    if (!m_isOpen)
        throw Failure(failures::disconnected);
    open->windows().bringToFront(*this);
    m_window.bringToFront();
}

void Inspector::setWindowState(int state) {
    if (std::exchange(m_windowState, state) != state)
        m_window.setState(state);
}

void Inspector::Close(int SaveMode) {
    const auto alive = shared_from_this();
    if (m_isOpen)
        m_item->Close(SaveMode);
}

void Inspector::end() {
    const auto alive = shared_from_this();
    const std::shared_ptr<desk::Session> open = session();
    if (!std::exchange(m_isOpen, false))
        return;
    m_window.close();
    open->windows().remove(*this);
    Q_EMIT InspectorEvents::Close();
}

} // namespace desk::objects

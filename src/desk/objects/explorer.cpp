#include "desk/objects/explorer.h"

#include "desk/objects/commandbars.h"
#include "desk/objects/item.h"
#include "desk/objects/mapifolder.h"
#include "desk/objects/openwindows.h"
#include "desk/objects/selection.h"
#include "desk/objects/session.h"

namespace desk::objects {

Explorer::Explorer(std::weak_ptr<desk::Session> session, std::shared_ptr<MAPIFolder> folder)
    : ExplorerEvents(session), m_folder(std::move(folder)),
      m_bars(std::make_shared<objects::CommandBars>(std::move(session))) {}

Explorer::~Explorer() = default;

Value Explorer::currentFolder() const { return automation::wrap(m_folder); }

void Explorer::setCurrentFolder(const Value &folder) {
    const auto alive = shared_from_this();
    const auto chosen = automation::exposedOf<MAPIFolder>(folder);
    if (!chosen)
        throw Failure(failures::objectNotSet);
    static_cast<void>(chosen->record());
    if (chosen == m_folder)
        return;
    bool isCancelled = false;
    Q_EMIT BeforeFolderSwitch(folder, &isCancelled);
    if (isCancelled)
        return;
    m_folder = chosen;
    m_window.setCaption(caption());
    Q_EMIT session()->windows().notices().folderChanged(*this);
    ClearSelection();
    Q_EMIT FolderSwitch();
    if (m_window.isShown() && m_isOpen)
        tellShown();
}

Value Explorer::selection() const {
    return automation::wrap(std::make_shared<objects::Selection>(weakSession(), m_folder->store(), m_selected));
}

QString Explorer::caption() const {
    return AttemptOr([&] { return m_folder->name(); }, QString());
}

Value Explorer::CommandBars(const Value &Index) {
    return Index.isMissing() ? Value(automation::wrap(m_bars)) : m_bars->Item(Index);
}

void Explorer::Display() { Activate(); }

void Explorer::Activate() {
    const auto alive = shared_from_this();
    const std::shared_ptr<desk::Session> open = session();
    if (!m_isOpen)
        throw Failure(failures::disconnected);
    open->windows().bringToFront(*this);
    if (!m_window.show(open->windowFactory(), *this))
        m_window.bringToFront();
    else if (m_isOpen)
        tellShown();
}

void Explorer::setWindowState(int state) {
    if (std::exchange(m_windowState, state) != state)
        m_window.setState(state);
}

void Explorer::tellShown() {
    const std::shared_ptr<desk::Session> open = session();
    if (open->folderShown)
        open->folderShown(m_folder->record());
}

void Explorer::Close() {
    const auto alive = shared_from_this();
    const std::shared_ptr<desk::Session> open = session();
    if (!std::exchange(m_isOpen, false))
        return;
    Q_EMIT ExplorerEvents::Close();
    m_window.close();
    open->windows().remove(*this);
}

void Explorer::AddToSelection(const Value &Item) {
    const auto item = automation::exposedOf<objects::Item>(Item);
    if (!item)
        throw Failure(failures::objectNotSet);
    const bool isHere = &item->store() == &m_folder->store() && item->fields().folder == m_folder->id();
    if (!isHere || item->fields().id == 0)
        throw Failure(failures::invalidCall, QStringLiteral("The item is not in the folder that is shown."));
    if (m_selected.contains(item->fields().id))
        return;
    m_selected.append(item->fields().id);
    Q_EMIT SelectionChange();
}

void Explorer::ClearSelection() {
    if (m_selected.isEmpty())
        return;
    m_selected.clear();
    Q_EMIT SelectionChange();
}

} // namespace desk::objects

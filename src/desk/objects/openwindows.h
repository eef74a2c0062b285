/// The windows of a session, open or about to be shown, and which of them is in front.
#pragma once

#include "automation/remote.h"
#include "desk/objects/sessionobject.h"
#include "desk/objects/windownotices.h"

namespace desk {

class Session;

namespace objects {
class Explorer;
class Explorers;
class Inspector;
class Inspectors;
class Item;
} // namespace objects

/// A dialog that waits for its answer on behalf of a client.
struct OpenDialog {
    automation::ClientNumber client;
    /// Closes it as if by Cancel.
    std::function<void()> close;
};

/// Holds the windows for as long as they are open.
class Windows {
  public:
    Windows();
    ~Windows();

    /// The one object of each collection.
    std::shared_ptr<objects::Explorers> explorerCollection(const std::weak_ptr<Session> &session);
    std::shared_ptr<objects::Inspectors> inspectorCollection(const std::weak_ptr<Session> &session);

    [[nodiscard]] const QList<std::shared_ptr<objects::Explorer>> &explorers() const { return m_explorers; }
    [[nodiscard]] const QList<std::shared_ptr<objects::Inspector>> &inspectors() const { return m_inspectors; }

    /// For whoever shows or lists the windows.
    [[nodiscard]] WindowNotices &notices() { return m_notices; }

    /// A new window comes up in front.
    void add(const std::shared_ptr<objects::Explorer> &explorer);
    void add(const std::shared_ptr<objects::Inspector> &inspector);
    void remove(objects::SessionObject &window);
    void bringToFront(objects::SessionObject &window);

    /// Each null where there is none.
    [[nodiscard]] std::shared_ptr<objects::SessionObject> front() const;
    [[nodiscard]] std::shared_ptr<objects::Explorer> frontExplorer() const;
    [[nodiscard]] std::shared_ptr<objects::Inspector> frontInspector() const;

    /// The window that shows an item, this object of it or another one.
    [[nodiscard]] std::shared_ptr<objects::Inspector> inspectorOf(const objects::Item &item) const;

    /// Remembers a dialog for as long as its asker holds it.
    void add(const std::shared_ptr<OpenDialog> &dialog) { m_dialogs.append(dialog); }

    /// Takes a client's bars and buttons out of all windows, and closes the dialogs that it waited for.
    void clientGone(automation::ClientNumber client);
    /// Ends all windows, the youngest first; changes in them are saved.
    void closeAll();

  private:
    template <class T>
    [[nodiscard]] std::shared_ptr<T> frontMost() const;

    WindowNotices m_notices;
    std::shared_ptr<objects::Explorers> m_explorerCollection;
    std::shared_ptr<objects::Inspectors> m_inspectorCollection;
    QList<std::shared_ptr<objects::Explorer>> m_explorers;
    QList<std::shared_ptr<objects::Inspector>> m_inspectors;
    /// The one in front last.
    QList<std::shared_ptr<objects::SessionObject>> m_order;
    QList<std::weak_ptr<OpenDialog>> m_dialogs;
};

} // namespace desk

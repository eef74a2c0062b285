/// Notices what was written to the stores, by this process or another, for those of this process who show it.
#pragma once

#include "desk/store/store.h"

#include <QObject>

namespace desk {

class Mailboxes;

class StoreChanges : public QObject {
    Q_OBJECT

  public:
    explicit StoreChanges(Mailboxes &mailboxes) : m_mailboxes(mailboxes) {}

    /// Looks whether anything was written since the last look, and tells of it. Costs microseconds where nothing was.
    /// To be called a few times a second, when nothing else is at work.
    /// \return whether anything was.
    bool look();

  Q_SIGNALS:
    /// Once a look, however much was written.
    void changed();

  private:
    Mailboxes &m_mailboxes;
    std::map<const Store *, StoreRevision> m_seen;
};

} // namespace desk

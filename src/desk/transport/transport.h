/// The way of a submitted mail from the Outbox to the mail system of the machine.
#pragma once

#include "desk/store/store.h"

#include <functional>

namespace desk {

class Mailboxes;

/// Mail goes out through a folder that the mail system picks up from: one message file each, complete when it appears.
///
/// No crash loses a message or sends it twice. Each goes through
///   1. ".sending/<entry id>.part" is written and durable; the item is in the Outbox: the file is dropped after a
///   crash;
///   2. the item is moved from the Outbox, which is the moment it counts as sent;
///   3. the file is renamed to "<message id>.eml": done after a crash, too.
///
/// What programs send says so in its header, and goes out only where the rules allow it (see automaticmail.h).
class Transport {
  public:
    /// \param moved  called when items have left the Outbox.
    Transport(Mailboxes &mailboxes, std::function<void()> moved) : m_mailboxes(mailboxes), m_moved(std::move(moved)) {}

    /// Sends what lies submitted in the Outbox; gives the number of messages. Where another process is at it, that one
    /// does it and this gives 0. A message that can't be written stays in the Outbox for the next time, and the first
    /// such failure is thrown when the others are out.
    int deliverNow();

  private:
    void settle(const QString &folder);
    /// False for a program's mail that may not go out: it is kept elsewhere.
    bool send(const QString &folder, const ItemRecord &item);
    void fileSent(const ItemRecord &item);

    Mailboxes &m_mailboxes;
    std::function<void()> m_moved;
};

} // namespace desk

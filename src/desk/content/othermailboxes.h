/// The mailboxes of other people that a session has open.
#pragma once

#include "desk/content/mailboxlist.h"
#include "desk/store/store.h"

namespace desk {

class Mailboxes;

/// The person's name from that of a top folder.
QString personOf(const QString &rootName);

/// Opens the mailbox of another person. Fails with `notFound` where there is none, `accessDenied` where it may only be
/// read or not even that, `invalidCall` for a file that is no mailbox, and as a store does.
std::unique_ptr<Store> openMailbox(const QString &file);

/// The open mailboxes of the profile's list. One that is taken from the list stays open until the session ends: its
/// objects may be in use.
class OtherMailboxes {
  public:
    explicit OtherMailboxes(Mailboxes &mailboxes);

    /// Opens what the list names and is not open yet: what was added, and what could not be opened before. Fails
    /// with a sentence on each one that can't be opened; the others are open then.
    void look();
    /// In the order of the list.
    [[nodiscard]] QList<Store *> stores() const;

  private:
    struct Open {
        QString file;
        std::unique_ptr<Store> store;
    };

    void open(const QString &file);

    Mailboxes &m_mailboxes;
    MailboxList m_list;
    std::vector<Open> m_open;
    /// The list's when it was read last; empty when something of it is not open.
    QString m_mark;
};

} // namespace desk

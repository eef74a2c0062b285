/// What a store remembers of those whom mail comes from and goes to, so that programs do not write to machines for
/// ever.
///
/// Two tables of the store's file, made when they are first needed. Both are bounded, and neither costs more for
/// knowing more addresses: whose last message was automatic (at most 100,000 of them, the oldest are forgotten first),
/// and what programs sent within the last hour. Addresses are kept as hashes: those who share a store need not know who
/// writes to each of them.
#pragma once

#include "desk/store/store.h"

namespace desk {

class Correspondents {
  public:
    /// The store's, which must outlive this.
    explicit Correspondents(Store &store) : m_store(store) {}

    /// What kind the last message of an address was; 0 for an ordinary one and for an address that nothing is known of.
    /// Case means nothing in an address.
    [[nodiscard]] int lastKind(const QString &address);
    /// Notes the kind of an address's latest message; 0 makes it an ordinary one. Writes only where that is news.
    void note(const QString &address, int kind);

    /// Counts a message to addresses, unless one of them has been sent `most` others within the hour around `now`:
    /// gives that address then, and counts nothing. A message that was counted for an address is not counted there
    /// again.
    std::optional<QString> admit(const QStringList &addresses, const QString &messageId, int most, DateTime now);

  private:
    [[nodiscard]] Connection &connection();
    [[nodiscard]] bool hasTables();
    void makeTables();

    Store &m_store;
    bool m_hasTables = false;
};

} // namespace desk

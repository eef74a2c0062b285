/// The mark of a move between stores that is under way: a lock on one byte of the file "<store>-transfers", which the
/// machine frees when the process that holds it dies.
#pragma once

#include <QString>

namespace desk {

class TransferLock {
  public:
    /// Fails with `accessDenied` when the file cannot be made.
    explicit TransferLock(const QString &storePath);
    ~TransferLock();
    TransferLock(const TransferLock &) = delete;
    TransferLock &operator=(const TransferLock &) = delete;

    /// Takes the byte of an incoming item; false when somebody who lives holds it.
    [[nodiscard]] bool take(qint64 item);

  private:
    int m_file = -1;
};

} // namespace desk

/// Progress on standard error.
#pragma once

#include "platform/storage/databasecopy.h"

#include <QElapsedTimer>

namespace storage {

/// Tells from time to time how far a step has come, once it has taken longer than a second.
class ProgressLine {
  public:
    /// \param what  such as "orvelle-desk: mailbox.store".
    explicit ProgressLine(QString what);
    /// Ends the line, where one was begun.
    ~ProgressLine();
    ProgressLine(const ProgressLine &) = delete;
    ProgressLine &operator=(const ProgressLine &) = delete;

    void tell(qint64 done, qint64 all);
    [[nodiscard]] Progress teller() {
        return [this](qint64 done, qint64 all) { tell(done, all); };
    }

  private:
    QString m_what;
    /// On a terminal the line is written over.
    bool m_isTerminal;
    bool m_isBegun = false;
    QElapsedTimer m_since;
    qint64 m_next = 1000;
};

} // namespace storage

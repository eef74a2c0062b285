/// Which mailboxes of other people a profile opens beside its own.
#pragma once

#include "desk/content/profile.h"

#include <QStringList>

#include <functional>

namespace desk {

/// The files of these mailboxes, one path a line of the file "mailboxes.txt" in the profile. Several processes may
/// change the list at once: each change is one durable replacement of the file.
class MailboxList {
  public:
    explicit MailboxList(const Profile &profile);

    /// In the order they were added. Fails with `unspecified` where the file is no such list, 70 where it can't be
    /// read.
    [[nodiscard]] QStringList files() const;
    /// A path that is listed already changes nothing. Fails with 5 for a path that a line can't hold, 61 or 70 where
    /// the list can't be written.
    void add(const QString &file) const;
    /// A path that is not listed changes nothing. Fails as `add` does.
    void remove(const QString &file) const;
    /// Differs from the one before when somebody has changed the list. Costs microseconds.
    [[nodiscard]] QString mark() const;

  private:
    void change(const std::function<void(QStringList &)> &step) const;

    QString m_path;
};

} // namespace desk

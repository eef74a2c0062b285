/// How a process knows whether another process of this program is running on the same profile.
#pragma once

#include <QString>

/// A locked file, held for the life of the process. The system frees it however the process ends.
class InstanceLock {
  public:
    /// The file is made where it is missing. Fails with 70 or 76 when it can't be.
    explicit InstanceLock(const QString &file);
    ~InstanceLock();
    InstanceLock(const InstanceLock &) = delete;
    InstanceLock &operator=(const InstanceLock &) = delete;

    /// False when another process holds the file.
    [[nodiscard]] bool isFirst() const { return m_first; }

  private:
    int m_descriptor = -1;
    bool m_first = false;
};

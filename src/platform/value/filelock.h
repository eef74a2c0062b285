/// A lock between processes that a killed holder can't leave behind.
#pragma once

#include <QString>

#include <chrono>
#include <memory>

/// Holds a file locked for as long as it lives. The machine itself frees the lock when the holder's process ends,
/// however it ends; the file stays, and that it exists means nothing.
///
/// REQUIRES: a file is either taken or joined, never both: the two kinds of lock don't see each other.
class FileLock {
  public:
    /// Waits up to `patience` for the present holder. Nothing when it still holds the file then. Makes the file; fails
    /// with 76 when its folder is missing, 70 when it can't be opened.
    static std::unique_ptr<FileLock> take(const QString &file, std::chrono::milliseconds patience = {});

    struct Joined;
    /// Holds the file together with everybody who has joined it. Of several that join a free file at once, exactly one
    /// is the first. Fails as `take` does.
    static Joined join(const QString &file);
    ~FileLock();
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;

  private:
    explicit FileLock(int descriptor) : m_descriptor(descriptor) {}

    int m_descriptor;
};

struct FileLock::Joined {
    std::unique_ptr<FileLock> lock;
    /// Nobody else held the file.
    bool isFirst = false;
};

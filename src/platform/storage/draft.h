/// A file in the making.
#pragma once

#include <QString>

#include <chrono>

namespace storage {

/// A file that is written under the name "<path>.unfinished" and gets its own when it is whole. What a kill leaves has
/// the other name, and is written over by the next try.
///
/// REQUIRES: who writes to `path()` has closed it before `publish`, and opens the published file only when the draft is
/// gone: its end lets go of every lock that this process holds on the file.
class Draft {
  public:
    enum class Taken { Refuse, Replace };

    /// An empty file, its owner's alone. Waits up to `patience` for another program that makes the same file. Fails as
    /// `durable.h` says, and with 70 when the other is not done in time.
    explicit Draft(QString target, std::chrono::milliseconds patience = {});
    /// Removes what was not published, with the files that the database engine may have left beside it.
    ~Draft();
    Draft(const Draft &) = delete;
    Draft &operator=(const Draft &) = delete;

    [[nodiscard]] const QString &path() const { return m_path; }
    [[nodiscard]] const QString &target() const { return m_target; }
    /// The open file, for its rights.
    [[nodiscard]] int descriptor() const { return m_file; }

    /// Brings it to the disk and gives it its name. \param taken  what becomes of a file that has the name: with
    /// `Refuse` the publishing fails with `fileExists`.
    void publish(Taken taken);

  private:
    [[nodiscard]] bool take();
    void removeRemains() const;

    QString m_target;
    QString m_path;
    int m_file = -1;
    bool m_isPublished = false;
};

} // namespace storage

/// A folder for files that are on their way from one item to another.
#pragma once

#include <QTemporaryDir>

/// A folder of its own below the one for temporary files, since clients on one machine share that one, and their mails
/// the usual file names. It goes with its object; a killed run leaves it to the next run's `subSweep`.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    /// False where none could be made: the disk is full, or the folder for temporary files takes nothing.
    [[nodiscard]] bool isValid() const { return m_folder.isValid(); }
    /// As a path text with a backslash at its end.
    [[nodiscard]] QString Path() const;

    /// Takes away what killed runs of this user have left behind.
    static void subSweep();

  private:
    QTemporaryDir m_folder;
    /// Locked while the folder is in use. It is the folder itself: a file in it could have an attachment's name.
    int m_descriptor = -1;
};

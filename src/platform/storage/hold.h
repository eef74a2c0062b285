/// A database file that nobody else has open.
#pragma once

#include "platform/storage/draft.h"

namespace storage {

/// Keeps other programs from opening a database file while another one takes its place.
///
/// REQUIRES: this process has the file open nowhere else. It is to last for a moment only: a program that begins to
/// open the file meanwhile waits for it, and may go on with the old one.
class Hold {
  public:
    /// Takes what was committed into the file itself, as far as the file is whole. A file that is not there is held as
    /// well as it can be. Fails with 70 where a program has it open.
    explicit Hold(QString path);
    ~Hold();
    Hold(const Hold &) = delete;
    Hold &operator=(const Hold &) = delete;

    /// Puts the draft, made for this file, in its place in one step, with the rights that the file had. What stood
    /// there gets the name `kept`, and a log that could not be taken in "<kept>-wal".
    void replace(Draft &by, const QString &kept);

  private:
    void takeLogIn() const;
    void moveLogTo(const QString &kept) const;

    QString m_path;
    /// -1 where there is no file.
    int m_file = -1;
};

/// Gives what stands under a name a second one, where the file system knows second names, or else another one.
void keepAs(const QString &path, const QString &kept);

/// The first of the names "<path>.before-restore-1", "-2" and so on that none of the files has kept.
QString freeSuffix(const QStringList &paths);

} // namespace storage

// What a run wrote, read from the write-ahead log of its database files: the physical work that a bare program would
// have to do as well.
#pragma once

#include <QString>

#include <vector>

/// Reads the log of one database file, from where it read last.
class WalReader {
  public:
    explicit WalReader(const QString &databaseFile) : m_file(databaseFile + "-wal") {}

    /// The number of pages of each commit since the last call. Commits that a checkpoint has overwritten in between are
    /// not seen, so the sum may be too small and never too large.
    std::vector<int> commits();

  private:
    QString m_file;
    QByteArray m_salts;
    qint64 m_frames = 0;
};

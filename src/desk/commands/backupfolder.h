/// A backup of a profile: a folder with the stores, the settings and the forms, and with the check sums of all of them.
///
/// Format, version 1: "mailbox.store", "public.store", and where the profile has them "desk.ini", "registry.ini" and
/// "forms/NAME"; "SHA256SUMS" with the sum of each. A folder without that file is no backup.
#pragma once

#include "platform/storage/seal.h"

namespace desk {

inline const QString backupTitle = QStringLiteral("orvelle-desk backup 1");
inline const QString sumsFile = QStringLiteral("SHA256SUMS");
inline const QString mailboxCopy = QStringLiteral("mailbox.store");
inline const QString publicCopy = QStringLiteral("public.store");
/// The files of a profile that are kept beside the stores, and the folder of forms.
inline const QStringList smallFiles{QStringLiteral("desk.ini"), QStringLiteral("registry.ini")};
inline const QString formsName = QStringLiteral("forms");

/// Reads what a backup says of itself. Fails with `notFound` where there is none, `unspecified` for a damaged one.
storage::Sums sumsOf(const QString &folder);

/// Whether the folder says that it is a backup, whole or not.
bool isBackup(const QString &folder);

/// A folder in the making, "<target>.unfinished", which gets its name when it is whole; what a killed program has left
/// of it is used again.
class BackupDraft {
  public:
    /// Fails with 70 where another program makes the same backup.
    explicit BackupDraft(QString target);
    /// Removes what was not published.
    ~BackupDraft();
    BackupDraft(const BackupDraft &) = delete;
    BackupDraft &operator=(const BackupDraft &) = delete;

    [[nodiscard]] QString path(const QString &name) const { return m_path + u'/' + name; }
    /// Makes an empty file, its owner's alone, and the folder above it.
    [[nodiscard]] QString makeFile(const QString &name) const;
    /// Brings everything to the disk and gives the folder its name. \param replace  whether another backup may have it.
    void publish(bool replace);

  private:
    void syncAll() const;

    QString m_target;
    QString m_path;
    int m_folder = -1;
};

} // namespace desk

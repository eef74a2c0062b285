/// A profile: the folder that holds one person's mailbox, settings, socket and outgoing mail.
#pragma once

#include <QString>

#include <optional>

namespace desk {

/// The name of a mailbox's root folder before the person's name.
inline const QString mailboxPrefix = QStringLiteral("Mailbox - ");

/// How a desk is opened. What is left empty is taken from the profile's settings, and from the defaults where these
/// don't say either.
struct DeskOptions {
    /// Default: $ORVELLE_PROFILE, or a folder among the user's data.
    QString profile = {};
    /// The person's name; names the mailbox.
    QString user = {};
    /// The file of the public folders' store. Default: in the profile.
    QString publicFile = {};
    /// Whether a store that the profile once had, and that is missing, is to be made anew.
    bool makeMissing = false;
};

/// The folder of the profile that is meant, whether it is there or not.
QString profileFolder(const DeskOptions &options);

/// A file that is there while a backup is being put back.
QString restoreMark(const QString &profileFolder);

/// The settings of a profile. What the options name is remembered in its file "desk.ini".
class Profile {
  public:
    /// Makes the folder, readable by its owner alone, where it is missing, and narrows the rights to one that is there.
    /// Fails with 76 when it can't be made, and with `unspecified` where the restoring of a backup was cut off.
    explicit Profile(const DeskOptions &options);

    [[nodiscard]] const QString &folder() const { return m_folder; }
    [[nodiscard]] const QString &user() const { return m_user; }
    /// The person's own address on outgoing mail.
    [[nodiscard]] const QString &address() const { return m_address; }
    [[nodiscard]] QString rootName() const;

    [[nodiscard]] QString mailboxFile() const;
    [[nodiscard]] const QString &publicFile() const { return m_publicFile; }

    /// Fails with 53 where the mailbox is missing and the profile once had it.
    void refuseLostMailbox() const;
    /// The same of the public folders. \param hasFolders  whether the mailbox has any: the settings may be lost too,
    /// and no mailbox gets folders before its public folders are there.
    void refuseLostPublicStore(bool hasFolders) const;
    /// Remembers which stores the profile has. REQUIRES: they are there.
    void rememberStores() const;

    [[nodiscard]] QString socket() const;
    /// Where messages are left for the mail system of the machine.
    [[nodiscard]] QString outgoingFolder() const;
    /// Form definitions of this person alone.
    [[nodiscard]] QString formsFolder() const;

    /// The path of the folder that is shown at start; empty for none.
    [[nodiscard]] QString openPath() const;
    void setOpenPath(const QString &path) const;

  private:
    [[nodiscard]] QString file(const char *name) const;

    QString m_folder;
    QString m_user;
    QString m_address;
    QString m_publicFile;
    bool m_hadMailbox = false;
    /// Nothing where it can't be told.
    std::optional<bool> m_hadPublicStore;
};

} // namespace desk

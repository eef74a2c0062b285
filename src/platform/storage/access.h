/// Who may read and write the files of a profile and of a store that several people share.
#pragma once

#include <QString>
#include <QStringList>

namespace storage {

/// `Owner`: nobody else. `Group`: also the file's group, as far as its bits grant it; never everybody.
enum class Sharing { Owner, Group };

/// Takes rights away that are too wide, and remembers what it did. Links are not followed: what they lead to is not
/// narrowed by who holds the link.
class Narrowing {
  public:
    /// A file or a folder by itself; one that isn't there is passed over.
    void narrow(const QString &path, Sharing sharing);
    /// A folder and the files in it. Only one that is too wide is looked into: the files of any other are out of reach.
    void narrowFolder(const QString &path);

    /// For the person: what was narrowed, and what belongs to somebody else and has to be narrowed by them.
    [[nodiscard]] QStringList messages() const;

  private:
    QStringList m_narrowed;
    QStringList m_sharedNarrowed;
    QStringList m_foreign;
};

/// Gives a new file in a folder that its group may write (and not everybody) that group and its rights. In any other
/// folder the file stays its owner's alone.
void shareWithGroupOf(int file, const QString &folder);

/// Gives a file that belongs to a store the rights and the group of the store, where it is the caller's own.
void followAccess(const QString &file, const QString &store);

/// Why a file can't be written. `Unreadable`: nobody may even read it.
enum class Bar { None, ReadOnlyDisk, Unreadable, ReadOnlyFile, NoRight };
Bar writeBar(const QString &path);

/// The bytes that the caller may still write on the disk of a file; nothing where the machine can't tell.
std::optional<qint64> roomFor(const QString &path);

} // namespace storage

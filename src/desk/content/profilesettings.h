/// The file "desk.ini" of a profile: what the desk remembers from one run to the next.
#pragma once

#include <QString>

namespace desk {

/// Makes the settings file with the person's name in it where there is none. It is never anybody else's to read, as one
/// that the settings' own writer makes would be for a moment. Failures as `durable.h` says.
void makeSettings(const QString &path, const QString &user);

/// Sees to it that the settings can be read. A file that is no settings file (cut, emptied, overwritten) is kept as
/// "desk.ini.damaged-N", said on standard error, and written anew with what can still be read in it and with the
/// person's name from the mailbox. Fails with `unspecified`, and changes nothing, where it can't be told which file the
/// public folders are in: another one would come up empty.
///
/// \param publicFile  what the caller names as the public folders' file, or empty.
void mendSettings(const QString &profileFolder, const QString &publicFile);

/// The person's name where the settings are lost or name nobody and the mailbox still does, which is said on standard
/// error; empty otherwise. Fails as a store does where there is a mailbox and it can't be opened: under another name it
/// would be renamed once it can.
QString nameFromMailbox(const QString &profileFolder);

/// The person whose mailbox that file is; empty where it can't be told.
QString ownerOfMailbox(const QString &mailboxFile);

} // namespace desk

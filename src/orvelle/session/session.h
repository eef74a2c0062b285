/// The session: the thin layer through which the system finds the host, knows its user and lets go of it at the end.
#pragma once

#include "orvelle/host/constants.h"
#include "orvelle/host/host.h"
#include "platform/value/processlocal.h"

#include <QString>

#include <functional>

/// Reaches a running host and gives its application object, or fails. Set by whoever makes a copy of the program.
extern ProcessLocal<std::function<automation::ObjectPtr()>> runningHost;

/// Finds or starts the host and opens its session, or ends the process. Nothing when the host is there already.
/// \param intFolderType  the default folder to show when the host has no window.
void subStartOutlook(qint32 intFolderType);

/// Makes the active Explorer's folder the ticket folder; opens an Explorer on the default folder where there is none.
/// Tells the person when there is no such folder.
void subSetCurrentFolder(qint32 intFolderType);

/// The host's major version, asked for once. 10 and later take a body format.
qint16 fncOutlookVersion();
/// Whether items of this host have a body format. It keeps the look of a body until the format has gone to rich text
/// and back, and that costs the text: whoever does it writes the body again.
bool fncHasBodyFormat();

/// The name of the person at the program, by the mailbox or else by the machine; stays what it was when neither has
/// one.
QString fncGetUserName();
/// Takes the current user's name from the name of the mailbox root, such as "Mailbox - Ann Other".
void subGetSafeMailboxName();

/// What to do when the host can't make a ticket item, with the failure's own description behind it.
QString fncFormsCacheMessage(const QString &strDescription);

/// Makes the host load the ticket folder's home page anew.
void subRefreshCBHomepage();

/// Unloads the forms and lets go of the session, the ticket folder and the host.
void subReleaseOutlook();

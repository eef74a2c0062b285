/// The steps of one message from its arrival to the subfolder "Converted", or under the ticket that it answers.
#pragma once

#include "orvelle/host/folders.h"

#include <QString>

/// The claim of a client on a message.
inline constexpr char strWorkingMark[] = "Working...";

/// The folder below a ticket's that takes what came in for it.
inline constexpr char receivedFolder[] = "Received";

/// Whether tickets have folders of their own for their mail.
bool fncUsesSubFolders();

/// Files a copy of a converted message under its ticket where tickets have folders. No copy stays anywhere else.
void subKeepCopyUnderTicket(const host::Item &oui, const QString &strTicketID);

/// Whether the item is a flag item: a post of that subject. Anybody can write the subject on a mail, and a mail is
/// converted like any other. Fails for an item that can't be read.
bool fncIsFlagItem(const host::Item &oui);

/// Whether the item is of a kind that is converted, and no flag item. Fails for an item that can't be read.
bool fncIsMailOrPost(const host::Item &oui);

/// Whether a mail that becomes a ticket is confirmed, as the scan decides it.
bool fncConfirms();

/// Makes a message that this client has claimed a ticket, up to its place in "Converted".
void subConvertClaimed(const host::Item &oui, const host::MAPIFolder &oufMonitored);

/// Handles an item that the scan met. REQUIRES: `fncIsNewMailItem`.
void subHandleScannedItem(const host::Item &oui, const host::MAPIFolder &oufMonitored);

/// Handles an item that has just come into a watched folder. Of several clients that watch it, one does.
void subHandleNewItem(const host::Item &oui, const host::MAPIFolder &oufMonitored);

/// Moves a converted message to the subfolder "Converted", which is made where it is missing. A message that can't be
/// moved stays, and its marks keep it from being converted again.
void subMoveToConverted(const host::Item &ouiMail, const host::MAPIFolder &ouf);

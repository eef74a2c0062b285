/// Where the sent copies of a ticket's mails go, and how they come to the ticket.
#pragma once

#include "orvelle/host/items.h"
#include "platform/value/processlocal.h"

#include <functional>

/// Gives the folder that the run watches for sent mail, Nothing where it can't be had. Set by what watches it; empty in
/// a run that watches none.
extern ProcessLocal<std::function<host::MAPIFolder()>> fncSentFolder;

/// Lets the sent copy go to that folder, where tickets have subfolders. Fails with 91 in a run that watches none.
void subSetSentFolder(const host::MailItem &ouiMail);

/// Files a sent mail under the ticket that its subject names. Never fails; a mail that names none stays where it is.
void subFileSentItem(const host::Item &Item);

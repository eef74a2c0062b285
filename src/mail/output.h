/// What every mail of the system is given before it goes out.
#pragma once

#include "outlook/host/items.h"

/// Sends under the name of the setting "EmailFrom" where that is longer than 5 characters.
void subSetEmailFrom(const host::MailItem &ouiMail);

/// Lets the sent copy go to the folder that the toolbar watches, where tickets have subfolders. Fails with 91 in a run
/// without a toolbar.
void subSetSentFolder(const host::MailItem &ouiMail);

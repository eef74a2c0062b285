/// The number of a ticket in the subject of a mail, and the folders that keep a ticket's mail below the ticket folder.
#pragma once

#include "orvelle/host/folders.h"

#include <QString>

/// The text between the first "{" and the first "}" behind it, which may be empty and may be anything; empty where
/// there is no such pair.
QString fncGetTicketIDFromSubject(const QString &strSubject);

/// The name of the folder for the text in a subject's braces, which anybody can write: the text itself where it makes a
/// name, as every ticket's number does. What no folder should have in its name (control characters, the separators of
/// paths, blanks at the ends) stands as "_", and what is too long is cut.
QString fncTicketFolderName(const QString &strTicketID);

/// The folder of a ticket, made where it is missing; Nothing, and a message to the person, when it can't be made.
host::MAPIFolder fncGetTicketFolder(const QString &strTicketID);

/// A folder below the ticket's, "Received" or "Sent", made where it is missing; Nothing as above.
host::MAPIFolder fncGetTicketSubFolder(const QString &strTicketID, const QString &strName);

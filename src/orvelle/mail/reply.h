/// Mails that answer a ticket.
#pragma once

#include "orvelle/host/folders.h"

#include <QString>

/// The ticket that a mail answers, by the text in the braces of its subject; empty when it answers none. That is any
/// text, unless the setting "RepliesNeedTicket" is 1: then a text that is no ticket's number counts for nothing.
QString fncAnsweredTicket(const host::Item &oui);

/// Whether the database has a ticket of that number, open or closed.
bool fncHasTicketRow(const QString &strTicketID);
/// The same of the ticket folder or the database.
bool fncIsTicket(const QString &strTicketID);

/// Begins to file a reply that has come into a watched folder. Several clients may watch one folder: each took it when
/// all found it empty. The one who saves this mark files the reply; the scan does not look at the mark, so that the
/// reply of a client that died here is filed by the next one that starts.
///
/// False for a reply that another client files or has filed. One that can't be marked is filed all the same.
bool fncBeginFiling(const host::Item &oui, const QString &strWork);
/// Puts a reply that has its work row into the ticket's folder. Fails where it can't be moved, unless somebody has put
/// it elsewhere in the meantime.
void subFileReply(const host::Item &oui, const host::MAPIFolder &oufReceived);
/// Takes the mark away: a reply that somebody takes back into the folder is a new one there.
void subEndFiling(const host::Item &oui);

/// A ticket from a mail, and a row in a ticket's work log from a reply.
#pragma once

#include "outlook/host/items.h"

#include <QString>

/// Makes a ticket from a mail or post and gives its number; an empty text for an item of any other class, or when no
/// ticket could be made.
QString fncCreateSingleTicket(const host::Item &ouiMail);

/// Fills a new ticket with the mail's sender, text and subject. Does nothing without the safe-object library; a
/// property that the ticket lacks does not stop the rest.
/// \param oups  the ticket's properties.
void subFillTicketFromMail(const host::Item &ouiMail, const host::PostItem &ouiPost, const host::UserProperties &oups);

/// Notes in the ticket's work log that a mail has come, also while other clients write to that log. Nothing happens for
/// a number that is no ticket's, or for a ticket that can't be read.
void subAddEmailWorkItem(const QString &strTicketID, const QString &strSender);

/// A ticket from a mail, and a row in a ticket's work log from a reply.
#pragma once

#include "orvelle/host/items.h"

#include <QString>

/// Makes a ticket from a mail or post and gives its number; an empty text for an item of any other class, or when no
/// ticket could be made.
QString fncCreateSingleTicket(const host::Item &ouiMail);

/// Finishes a ticket's item that has all that the mail brought, but no number: it gets its row and its number.
/// \param ouiMail  the mail; may be Nothing.
/// \param strRowID  the row that was made for it already; empty where there is none.
/// Gives the number; an empty text where there can be no row.
QString fncFinishSingleTicket(const host::Item &ouiMail, const host::PostItem &ouiPost, const QString &strRowID);

/// Writes on a mail that it has become a ticket. REQUIRES: of the class IPM.NOTE; a post gets no marks.
void subMarkConverted(const host::Item &ouiMail, const QString &strTicketID);

/// Fills a new ticket with the mail's sender, text and subject. Does nothing without the safe-object library; a
/// property that the ticket lacks does not stop the rest.
void subFillTicketFromMail(const host::Item &ouiMail, const host::PostItem &ouiPost);

/// Notes in the ticket's work log that a mail has come, also while other clients write to that log. Nothing happens for
/// a number that is no ticket's, or for a ticket that can't be read.
/// \param strWork  the mail's work property (see claim.h), by which a mail that is handled again gets no second row;
///                 empty for one that has none.
void subAddEmailWorkItem(const QString &strTicketID, const QString &strSender, const QString &strWork = {});

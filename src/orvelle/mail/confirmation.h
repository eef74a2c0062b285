/// The confirmation: the mail that tells the sender of a message that a ticket was made from it.
#pragma once

#include "orvelle/host/items.h"

#include <QString>

/// Makes the confirmation and sends it, or shows it for the person to send where the safe-object library is missing. A
/// confirmation that can't be made or sent is lost without a message.
/// \param strTo  the address; empty answers the sender.
void subSendConfirmation(const host::Item &oui, const QString &strTicketID, const QString &strTo);

/// What became of the confirmation of a mail whose client ended in the middle of it.
enum class Confirmation {
    None,  ///< it was not made
    Begun, ///< it lies in the drafts or the Outbox and was not sent
    Sent   ///< sent, held back by the host, or put away by somebody
};

/// Looks for the confirmation in this mailbox and under the ticket.
/// \param strWork  the mail's work property.
Confirmation fncConfirmationOf(const QString &strWork, const QString &strTicketID);

/// Sends the confirmation of a mail, unless that was done. One that was begun is the one that is sent.
void subFinishConfirmation(const host::Item &oui, const QString &strTicketID);

/// The templates of the settings, filled.
QString fncConfirmationBody(const QString &strTicketID, const QString &strBody, const QString &strSubject);
QString fncConfirmationSubject(const QString &strTicketID, const QString &strBody, const QString &strSubject);

/// Replaces the placeholders "[TICKETID]", "[BODY]" and "[SUBJECT]" in this order, each everywhere: one that stands in
/// the incoming text is replaced as well. A text that would have more than a million characters goes without the body,
/// and if that does not do, without the subject.
QString fncFillConfirmation(const QString &strTemplate, const QString &strTicketID, const QString &strBody,
                            const QString &strSubject);

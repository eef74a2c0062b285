/// The confirmation: the mail that tells the sender of a message that a ticket was made from it.
#pragma once

#include "outlook/host/items.h"

#include <QString>

/// Makes the confirmation and sends it, or shows it for the person to send where the safe-object library is missing. A
/// confirmation that can't be made or sent is lost without a message.
/// \param strTo  the address; empty answers the sender.
void subSendConfirmation(const host::Item &oui, const QString &strTicketID, const QString &strTo);

/// The templates of the settings, filled.
QString fncConfirmationBody(const QString &strTicketID, const QString &strBody, const QString &strSubject);
QString fncConfirmationSubject(const QString &strTicketID, const QString &strBody, const QString &strSubject);

/// Replaces the placeholders "[TICKETID]", "[BODY]" and "[SUBJECT]" in this order, each everywhere: one that stands in
/// the incoming text is replaced as well.
QString fncFillConfirmation(const QString &strTemplate, const QString &strTicketID, const QString &strBody,
                            const QString &strSubject);

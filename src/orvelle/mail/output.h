/// Tickets as mail and on paper, and what every mail of the system is given before it goes out.
#pragma once

#include "orvelle/host/items.h"

class cTicket;

/// Shows a mail about a ticket for the person to send, or prints the ticket. Never fails.
/// \param strTo  the address; empty prints.
/// \param OutputOption  the page, as in `cTicket::ToHTML`.
/// \param ouiItem  the ticket's item, whose files go along with a mail; may be Nothing.
void subOutputTicket(const cTicket &objTicket, const QString &strTo, qint32 OutputOption, const host::Item &ouiItem);

/// Sends under the name of the setting "EmailFrom" where that is longer than 5 characters.
void subSetEmailFrom(const host::MailItem &ouiMail);

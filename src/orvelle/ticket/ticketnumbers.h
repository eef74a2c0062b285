/// Ticket numbers after the database was lost, or replaced by an older copy.
#pragma once

#include <QString>

/// Makes the database's numbers go on behind those that the ticket folder knows: its items' and its subfolders'. Gives
/// what the person is to be told when that had to be done, or can't be; else the empty text. REQUIRES: the settings are
/// there; called before anything makes a ticket.
///
/// Items can be given any number by hand, and a subfolder by anybody who writes a mail. So a number that is far from
/// all others is not counted until the numbers have come near it. That is told of too, once for each helpdesk: it may
/// be the number of a ticket after all.
[[nodiscard]] QString fncRaiseTicketNumbers();

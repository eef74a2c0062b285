/// Ticket numbers after the database was lost, or replaced by an older copy.
#pragma once

/// Makes the database's numbers go on behind those that the ticket folder knows: its items' and its subfolders'. Tells
/// the person when that had to be done, or can't be. REQUIRES: the settings are there; called before anything makes a
/// ticket.
///
/// Items can be given any number by hand, and a subfolder by anybody who writes a mail. So a number that is far from
/// all others is not counted until the numbers have come near it.
void subRaiseTicketNumbers();

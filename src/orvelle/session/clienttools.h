/// The client tools: the add-in that brings the safe-object library to a machine.
#pragma once

/// Looks for the add-in and offers to install it where it is missing or too old. Never fails.
void subCheckClientTools();

/// Asks whether to install the client tools; on yes starts their set-up, which lies beside the ticket folder's home
/// page, and ends the process, since the host has to be started again.
void subOfferClientTools();

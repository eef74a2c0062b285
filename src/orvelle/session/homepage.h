/// The home page marks a folder as a helpdesk folder, and is how a client finds the shared program files beside it.
#pragma once

#include "orvelle/host/folders.h"

#include <QString>

/// The file name that a helpdesk folder's home page ends with, without regard to case.
inline constexpr char strHomePageFile[] = "Orvelle.htm";

/// The folder that a home page lies in, without a separator at its end.
QString fncHomePageFolder(const QString &strWebViewURL);

/// The active Explorer's folder when it is a helpdesk folder, else one that the person picks; asks until it is one or
/// the person gives up, which ends the process on the spot.
host::MAPIFolder fncValidTicketFolder();

/// Leaves the reference to the ticket folder in the registry, for the runs that can't look at an Explorer.
void subWriteReg();

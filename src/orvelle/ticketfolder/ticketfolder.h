/// The ticket folder from the reference to it that `objSettings.objFolder` is, for runs that can't look at an Explorer.
#pragma once

#include "orvelle/host/folders.h"

/// Fills `objSettings.objFolder` from the four values that the last full run left in the registry. A value that isn't
/// there leaves its field as it was.
void subReadFolderFromRegistry();

/// The folder that `objSettings.objFolder` refers to, or Nothing.
host::MAPIFolder fncSavedFolder();

/// Makes sure of a ticket folder: the saved one, the one of the registry, the active Explorer's, or one that the person
/// picks, which is stored. Ends the process when the person gives up.
void subFindTicketFolder();

/// The saved reference to the ticket folder, for runs that can't look at an Explorer.
#pragma once

/// Fills `objSettings.objFolder` from the four values that the last full run left in the registry. A value that isn't
/// there leaves its field as it was.
void subReadFolderFromRegistry();

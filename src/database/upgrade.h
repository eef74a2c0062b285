/// The database of an older installation: brought under the present file name.
#pragma once

/// Sets `strDBFileName`. A file under the old name is renamed; where that can't be done now (another program has it
/// open) the old name is used for this run, and the next start tries again.
void subFindDatabaseFile();

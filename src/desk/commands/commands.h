/// The commands of orvelle-desk. Each gives the exit status, and fails with a `Failure` where it can't be done.
#pragma once

#include "desk/commands/commandline.h"

namespace desk {

int runCommand(const CommandLine &line);
int deliverCommand(const CommandLine &line);
int foldersCommand(const CommandLine &line);
int addFolderCommand(const CommandLine &line);
int listCommand(const CommandLine &line);
int showCommand(const CommandLine &line);
int deleteCommand(const CommandLine &line);
int rulesCommand(const CommandLine &line);
int backupCommand(const CommandLine &line);
int restoreCommand(const CommandLine &line);
int addMailboxCommand(const CommandLine &line);
int listMailboxesCommand(const CommandLine &line);
int removeMailboxCommand(const CommandLine &line);

} // namespace desk

/// The dialog in which a person chooses a folder.
#pragma once

#include "desk/content/folderpath.h"

namespace desk {

class Session;

/// As `WindowFactory::pickFolder`.
std::optional<FolderPlace> pickFolder(Session &session);

} // namespace desk

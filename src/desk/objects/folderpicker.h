/// The choice of a folder by the person at the display.
#pragma once

#include "desk/objects/folderpath.h"

namespace desk {

/// Shows the folders of all stores, the one in front selected. Nothing on cancel, where nobody can be asked, and once
/// the client that asks has gone. The event loop runs meanwhile, so that other clients are served.
/// Fails with 0x8004010F where the chosen folder was deleted meanwhile.
std::optional<FolderPlace> pickFolder(Session &session);

} // namespace desk

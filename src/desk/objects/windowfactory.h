/// What the objects ask of the windows that people see.
#pragma once

#include "desk/content/folderpath.h"

namespace desk {

class Session;

/// The objects behave the same with and without windows: where there is no factory, nobody is asked and nothing is
/// shown.
class WindowFactory {
  public:
    WindowFactory() = default;
    virtual ~WindowFactory() = default;
    WindowFactory(const WindowFactory &) = delete;
    WindowFactory &operator=(const WindowFactory &) = delete;

    /// The choice of a folder by the person at the display, who sees the folders of all stores, the one in front
    /// selected. Nothing on cancel, where nobody can be asked, and once the client that asks has gone. The event loop
    /// runs meanwhile, so that other clients are served.
    /// Fails with 0x8004010F where the chosen folder was deleted meanwhile.
    virtual std::optional<FolderPlace> pickFolder(Session &session) = 0;
};

} // namespace desk

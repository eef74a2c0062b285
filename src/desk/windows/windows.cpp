#include "desk/windows/windows.h"

#include "desk/windows/folderpicker.h"

namespace desk {
namespace {

class Factory : public WindowFactory {
  public:
    std::optional<FolderPlace> pickFolder(Session &session) override { return desk::pickFolder(session); }
};

} // namespace

std::unique_ptr<WindowFactory> makeWindowFactory() { return std::make_unique<Factory>(); }

} // namespace desk

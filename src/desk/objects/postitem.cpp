#include "desk/objects/postitem.h"

namespace desk::objects {

void PostItem::choosePlace() {
    if (!sent())
        sign(Clock::now());
}

void PostItem::Post() {
    const auto alive = shared_from_this();
    Save();
    closeWindow();
}

} // namespace desk::objects

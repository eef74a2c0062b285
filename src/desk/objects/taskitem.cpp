#include "desk/objects/taskitem.h"

namespace desk::objects {

void TaskItem::setComplete(bool value) {
    setStatus(value ? completeStatus : 0);
    setPercentComplete(value ? 100 : 0);
}

} // namespace desk::objects

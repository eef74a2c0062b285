#include "desk/objects/contactitem.h"

namespace desk::objects {

void ContactItem::setFullName(const QString &value) {
    const bool isSubject = subject() == fullName();
    put(&ItemRecord::fullName, value, "FullName");
    if (isSubject)
        setSubject(value);
}

} // namespace desk::objects

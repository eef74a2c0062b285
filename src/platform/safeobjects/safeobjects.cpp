#include "platform/safeobjects/safeobjects.h"

#include "platform/safeobjects/wrappers.h"
#include "platform/scripting/components.h"

namespace safeobjects {

QStringList progIds() { return {mapiUtils, safeMailItem, safePostItem, safeContactItem, addressLists, buttonHolder}; }

void registerComponents(const std::function<automation::ObjectPtr()> &session) {
    scripting::Components &components = scripting::components;
    components.add(mapiUtils, [session] { return automation::wrap(std::make_shared<MAPIUtils>(session)); });
    components.add(addressLists, [session] { return automation::wrap(std::make_shared<AddressLists>(session)); });
    components.add(buttonHolder, [] { return automation::wrap(std::make_shared<ButtonHolder>()); });
    for (const char *progId : {safeMailItem, safePostItem, safeContactItem}) {
        const QString kind = QString(progId).section(u'.', -1);
        components.add(progId, [kind] { return automation::wrap(std::make_shared<SafeItem>(kind)); });
    }
}

} // namespace safeobjects

#include "desk/objects/inspectors.h"

#include "desk/objects/inspector.h"
#include "desk/objects/item.h"
#include "desk/objects/openwindows.h"
#include "desk/objects/session.h"

namespace desk::objects {

int Inspectors::count() const { return static_cast<int>(session()->windows().inspectors().size()); }

Value Inspectors::Item(const Value &Index) {
    const auto &inspectors = session()->windows().inspectors();
    return automation::wrap(inspectors.at(positionFrom(Index, inspectors.size())));
}

Value Inspectors::Add(const Value &Item) {
    const auto item = automation::exposedOf<objects::Item>(Item);
    if (!item)
        throw Failure(failures::objectNotSet);
    const auto standing = session()->windows().inspectorOf(*item);
    return automation::wrap(standing ? standing : open(item));
}

std::shared_ptr<Inspector> Inspectors::open(const std::shared_ptr<objects::Item> &item) {
    const auto alive = shared_from_this();
    const auto inspector = std::make_shared<Inspector>(weakSession(), item);
    session()->windows().add(inspector);
    Q_EMIT NewInspector(automation::wrap(inspector));
    return inspector;
}

} // namespace desk::objects

/// The windows that show items.
#pragma once

#include "desk/objects/sessionobject.h"

namespace desk::objects {

class Inspector;
class Item;

class Inspectors : public SessionObject {
    Q_OBJECT
    Q_CLASSINFO("Events", "NewInspector")
    Q_PROPERTY(int Count READ count)

  public:
    using SessionObject::SessionObject;

    [[nodiscard]] int count() const;
    /// By position from 1, in order of opening.
    Q_INVOKABLE Value Item(const Value &Index);
    /// The window of an item; opened, but not drawn until it is displayed.
    Q_INVOKABLE Value Add(const Value &Item);

    std::shared_ptr<Inspector> open(const std::shared_ptr<objects::Item> &item);

  Q_SIGNALS:
    void NewInspector(const Value &Inspector);
};

} // namespace desk::objects

/// The windows that show folders.
#pragma once

#include "desk/objects/sessionobject.h"

namespace desk::objects {

class Explorer;
class MAPIFolder;

class Explorers : public SessionObject {
    Q_OBJECT
    Q_CLASSINFO("Events", "NewExplorer")
    Q_PROPERTY(int Count READ count)

  public:
    using SessionObject::SessionObject;

    [[nodiscard]] int count() const;
    /// By position from 1, in order of opening.
    Q_INVOKABLE Value Item(const Value &Index);
    /// A window on the folder, in front, but not drawn until it is displayed.
    Q_INVOKABLE Value Add(const Value &Folder, const Value &DisplayMode = Value::Missing{});

    std::shared_ptr<Explorer> open(const std::shared_ptr<MAPIFolder> &folder);

  Q_SIGNALS:
    void NewExplorer(const Value &Explorer);
};

} // namespace desk::objects

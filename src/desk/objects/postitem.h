/// Posts: what stands in a folder for those who read there.
#pragma once

#include "desk/objects/messageitem.h"

namespace desk::objects {

class PostItem : public MessageItem {
    Q_OBJECT

  public:
    using MessageItem::MessageItem;

    [[nodiscard]] int objectClass() const override { return 45; }

    /// Saves the post in its folder, signed at the first time, and closes its window.
    Q_INVOKABLE void Post();

  protected:
    void choosePlace() override;
};

} // namespace desk::objects

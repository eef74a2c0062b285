/// Mail.
#pragma once

#include "desk/objects/messageitem.h"

namespace desk::objects {

class MailItem : public MessageItem {
    Q_OBJECT

  public:
    using MessageItem::MessageItem;

    [[nodiscard]] int objectClass() const override { return 43; }

    /// Submits the mail: it lies in the Outbox until the transport has taken it. Fails with 5 without a recipient.
    Q_INVOKABLE void Send();
    Q_INVOKABLE Value Reply();

  protected:
    /// A draft that was begun in the Outbox is kept in the Drafts: what lies in the Outbox is to be sent.
    void choosePlace() override;
};

} // namespace desk::objects

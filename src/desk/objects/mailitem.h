/// Mail.
#pragma once

#include "desk/objects/messageitem.h"

namespace desk::objects {

class MailItem : public MessageItem {
    Q_OBJECT
    Q_PROPERTY(Value AnsweredItem READ answeredItem WRITE setAnsweredItem)

  public:
    using MessageItem::MessageItem;

    [[nodiscard]] int objectClass() const override { return 43; }

    /// The item that this mail was said to answer, as long as the object lives; Nothing where it was not.
    [[nodiscard]] Value answeredItem() const;
    /// Makes the mail part of the other's thread. Fails with 13 for what is no mail or post.
    void setAnsweredItem(const Value &item);

    /// Submits the mail: it lies in the Outbox until the transport has taken it. Fails with 5 without a recipient. A
    /// mail that no window shows is a program's, for which there are rules (see automaticmail.h).
    Q_INVOKABLE void Send();
    Q_INVOKABLE Value Reply();

  protected:
    /// A draft that was begun in the Outbox is kept in the Drafts: what lies in the Outbox is to be sent.
    void choosePlace() override;

  private:
    std::shared_ptr<MessageItem> m_answered;
};

} // namespace desk::objects

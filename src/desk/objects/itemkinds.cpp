#include "desk/objects/itemkinds.h"

#include "desk/objects/appointmentitem.h"
#include "desk/objects/contactitem.h"
#include "desk/objects/mailitem.h"
#include "desk/objects/postitem.h"
#include "desk/objects/taskitem.h"

namespace desk::objects {
namespace {

constexpr std::array<ItemKind, 5> kinds{{
    {0, "IPM.Note", SpecialFolder::Drafts},
    {1, "IPM.Appointment", SpecialFolder::Calendar},
    {2, "IPM.Contact", SpecialFolder::Contacts},
    {3, "IPM.Task", SpecialFolder::Tasks},
    {6, "IPM.Post", SpecialFolder::Inbox},
}};

bool isOfClass(const QString &messageClass, const char *base) {
    return messageClass.startsWith(QLatin1StringView(base), Qt::CaseInsensitive);
}

} // namespace

ItemKind kindOfType(qint32 type) {
    for (const ItemKind &kind : kinds) {
        if (kind.type == type)
            return kind;
    }
    throw Failure(failures::invalidCall, QStringLiteral("There is no kind of item of the number %1.").arg(type));
}

qint32 itemTypeOfFolderType(qint32 folderType) {
    switch (static_cast<SpecialFolder>(folderType)) {
    case SpecialFolder::DeletedItems:
    case SpecialFolder::Outbox:
    case SpecialFolder::SentItems:
    case SpecialFolder::Inbox:
    case SpecialFolder::Drafts:
        return 0;
    case SpecialFolder::Calendar:
        return 1;
    case SpecialFolder::Contacts:
        return 2;
    case SpecialFolder::Tasks:
        return 3;
    case SpecialFolder::None:
        break;
    }
    throw Failure(failures::invalidCall,
                  QStringLiteral("There is no kind of folder of the number %1.").arg(folderType));
}

std::shared_ptr<Item> makeItem(std::weak_ptr<desk::Session> session, Store &store, const ItemRecord &record) {
    if (isOfClass(record.messageClass, "IPM.Post"))
        return std::make_shared<PostItem>(std::move(session), store, record);
    if (isOfClass(record.messageClass, "IPM.Contact"))
        return std::make_shared<ContactItem>(std::move(session), store, record);
    if (isOfClass(record.messageClass, "IPM.Appointment"))
        return std::make_shared<AppointmentItem>(std::move(session), store, record);
    if (isOfClass(record.messageClass, "IPM.Task"))
        return std::make_shared<TaskItem>(std::move(session), store, record);
    return std::make_shared<MailItem>(std::move(session), store, record);
}

} // namespace desk::objects

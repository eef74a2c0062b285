#include "desk/commands/commands.h"
#include "desk/commands/output.h"
#include "desk/objects/item.h"
#include "desk/objects/session.h"

#include <QJsonObject>

namespace desk {

int deleteCommand(const CommandLine &line) {
    const std::shared_ptr<Session> session = Session::open(Profile(line.desk));
    const QString &entryId = line.arguments.first();
    Store *store = session->storeOf(entryId);
    const auto record = store ? store->itemByEntryId(entryId) : std::nullopt;
    if (!record)
        throw Failure(failures::notFound, QStringLiteral("There is no item %1.").arg(entryId));
    session->item(*store, *record)->Delete();
    if (line.json)
        printJson(QJsonObject{{"entryId", entryId}, {"subject", record->subject}});
    else
        printLine(QStringLiteral("Deleted: %1").arg(record->subject));
    return 0;
}

} // namespace desk

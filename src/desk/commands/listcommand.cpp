#include "desk/commands/commands.h"
#include "desk/commands/output.h"
#include "desk/content/fields.h"
#include "desk/content/folderpath.h"
#include "desk/objects/session.h"

#include <QJsonArray>

namespace desk {
namespace {

constexpr int pageSize = 500;

const QStringList &usualColumns() {
    static const QStringList columns{"EntryID",     "MessageClass",       "ReceivedTime", "UnRead",
                                     "Attachments", "BillingInformation", "SenderName",   "Subject"};
    return columns;
}

Value valueOf(const QString &column, const ItemRecord &item, const QList<Property> &properties) {
    // A custom property is what a person names who lists a folder of forms; the field of that name comes second.
    for (const Property &property : properties) {
        if (property.name.compare(column, Qt::CaseInsensitive) == 0)
            return property.value;
    }
    const StandardField *field = standardField(column);
    return field ? field->read(item) : Value();
}

QJsonObject jsonOf(const ItemRecord &item, const QList<Property> &properties) {
    QJsonArray custom;
    for (const Property &property : properties)
        custom.append(desk::jsonOf(property));
    return {{"entryId", item.entryId},
            {"subject", item.subject},
            {"messageClass", item.messageClass},
            {"senderName", item.senderName},
            {"senderAddress", item.senderAddress},
            {"received", desk::jsonOf(item.receivedAt)},
            {"unread", item.unread},
            {"billingInformation", item.billingInformation},
            {"attachments", item.attachmentCount},
            {"properties", custom}};
}

template <class Use>
void forEachItem(const FolderPlace &place, Use use) {
    qint64 arrival = 0;
    for (;;) {
        const QList<ItemRecord> page = place.store->itemsArrivedAfter(place.folder.id, arrival, pageSize);
        for (const ItemRecord &item : page) {
            arrival = item.arrival;
            use(item);
        }
        if (page.size() < pageSize)
            return;
    }
}

} // namespace

int listCommand(const CommandLine &line) {
    const std::shared_ptr<Session> session = Session::open(Profile(line.desk));
    const FolderPlace place = folderAt(*session, line.arguments.first());
    if (line.count) {
        const qint64 count = place.store->count(place.folder.id);
        if (line.json)
            printJson(QJsonObject{{"count", count}});
        else
            printLine(QString::number(count));
        return 0;
    }
    const QStringList columns = line.columns.isEmpty() ? usualColumns() : line.columns;
    const bool needsProperties = line.json || std::any_of(columns.begin(), columns.end(),
                                                          [](const QString &each) { return !standardField(each); });
    QJsonArray items;
    QList<QStringList> rows;
    forEachItem(place, [&](const ItemRecord &item) {
        const QList<Property> properties = needsProperties ? place.store->properties(item.id) : QList<Property>();
        if (line.json) {
            items.append(jsonOf(item, properties));
            return;
        }
        QStringList row;
        for (const QString &column : columns)
            row.append(plainText(valueOf(column, item, properties)));
        rows.append(row);
    });
    if (line.json)
        printJson(items);
    else
        printTable(columns, rows);
    return 0;
}

} // namespace desk

#include "desk/objects/items.h"

#include "desk/content/itemsearch.h"
#include "desk/objects/item.h"
#include "desk/objects/itemkinds.h"
#include "desk/objects/itemwatch.h"
#include "desk/objects/mapifolder.h"
#include "desk/objects/session.h"
#include "platform/value/convert.h"

#include <QMetaMethod>

namespace desk::objects {

Items::Items(std::weak_ptr<desk::Session> session, std::shared_ptr<MAPIFolder> folder)
    : SessionObject(std::move(session)), m_folder(std::move(folder)) {}

Store &Items::store() const { return m_folder->store(); }

int Items::count() const {
    const std::shared_ptr<desk::Session> open = session();
    return static_cast<int>(store().count(m_folder->id()));
}

Value Items::parent() const { return automation::wrap(m_folder); }

Value Items::opened(const std::optional<ItemRecord> &record) const {
    return record ? Value(automation::wrap(session()->item(store(), *record))) : Value::nothing();
}

Value Items::Item(const Value &Index) {
    const std::shared_ptr<desk::Session> open = session();
    if (Index.isText()) {
        const QString subject = toText(Index);
        const auto record = store().find(m_folder->id(), {{Field::Subject, subject}});
        if (!record)
            throw Failure(failures::notFound, QStringLiteral("There is no item \"%1\" here.").arg(subject));
        return opened(record);
    }
    const auto record = store().nth(m_folder->id(), toInt32(Index));
    if (!record)
        throw Failure(failures::subscriptOutOfRange);
    return opened(record);
}

Value Items::Add(const Value &Type) {
    QString messageClass;
    if (Type.isText())
        messageClass = toText(Type);
    else if (!Type.isMissing() && !Type.isEmpty())
        messageClass = QString::fromLatin1(kindOfType(toInt32(Type)).messageClass);
    if (messageClass.isEmpty())
        messageClass = m_folder->defaultMessageClass();
    return automation::wrap(session()->newItem(store(), m_folder->id(), messageClass));
}

Value Items::Find(const QString &Filter) {
    m_filter = parseFilter(Filter);
    m_found = 0;
    return nextMatch();
}

Value Items::FindNext() { return m_filter.isEmpty() ? Value::nothing() : nextMatch(); }

Value Items::nextMatch() {
    const std::shared_ptr<desk::Session> open = session();
    const std::optional<ItemRecord> record = findItem(store(), m_folder->id(), m_filter, m_found);
    if (record)
        m_found = record->arrival;
    else
        m_filter.clear();
    return opened(record);
}

Value Items::GetFirst() {
    m_next = 1;
    return GetNext();
}

Value Items::GetNext() {
    const std::shared_ptr<desk::Session> open = session();
    return opened(store().nth(m_folder->id(), m_next++));
}

Value Items::GetLast() {
    const std::shared_ptr<desk::Session> open = session();
    return opened(store().nth(m_folder->id(), store().count(m_folder->id())));
}

void Items::Remove(int Index) {
    const std::shared_ptr<desk::Session> open = session();
    const auto record = store().nth(m_folder->id(), Index);
    if (!record)
        throw Failure(failures::subscriptOutOfRange);
    open->item(store(), *record)->Delete();
}

void Items::connectNotify(const QMetaMethod &signal) {
    if (signal == QMetaMethod::fromSignal(&Items::ItemAdd))
        session()->watch().add(self<Items>());
}

} // namespace desk::objects

#include "desk/objects/userproperty.h"

#include "desk/objects/item.h"
#include "platform/value/convert.h"

namespace desk::objects {

UserProperty::UserProperty(std::weak_ptr<desk::Session> session, std::shared_ptr<Item> item, QString name)
    : SessionObject(std::move(session)), m_item(std::move(item)), m_name(std::move(name)) {}

const Property &UserProperty::property() const {
    const Property *property = m_item->content().findProperty(m_name);
    if (!property)
        throw Failure(failures::objectNotSet);
    return *property;
}

Value UserProperty::value() const {
    const Property &standing = property();
    if (!standing.value.isEmpty())
        return standing.value;
    switch (standing.type) {
    case PropertyType::Number:
        return 0.0;
    case PropertyType::Date:
        return DateTime();
    case PropertyType::YesNo:
        return false;
    case PropertyType::Text:
        break;
    }
    return QString();
}

void UserProperty::setValue(const Value &value) {
    Property changed = property();
    switch (changed.type) {
    case PropertyType::Text:
        changed.value = toText(value);
        break;
    case PropertyType::Number:
        changed.value = toDouble(value);
        break;
    case PropertyType::Date:
        changed.value = toDateTime(value);
        break;
    case PropertyType::YesNo:
        changed.value = toBool(value);
        break;
    }
    m_item->putProperty(changed);
}

Value UserProperty::parent() const { return automation::wrap(m_item); }

void UserProperty::Delete() { m_item->content().removeProperty(property().name); }

} // namespace desk::objects

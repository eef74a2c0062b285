#include "desk/objects/userproperties.h"

#include "desk/objects/item.h"
#include "desk/objects/userproperty.h"
#include "platform/value/convert.h"

namespace desk::objects {

UserProperties::UserProperties(std::weak_ptr<desk::Session> session, std::shared_ptr<objects::Item> item)
    : SessionObject(std::move(session)), m_item(std::move(item)) {}

int UserProperties::count() const { return static_cast<int>(m_item->content().properties().size()); }

Value UserProperties::parent() const { return automation::wrap(m_item); }

Value UserProperties::named(const QString &name) const {
    return automation::wrap(std::make_shared<UserProperty>(weakSession(), m_item, name));
}

Value UserProperties::Find(const QString &Name, const Value & /*Custom*/) {
    const Property *property = m_item->content().findProperty(Name);
    return property ? named(property->name) : Value::nothing();
}

Value UserProperties::Item(const Value &Index) {
    if (!Index.isText()) {
        const QList<Property> &properties = m_item->content().properties();
        return named(properties.at(positionFrom(Index, properties.size())).name);
    }
    const Value found = Find(toText(Index));
    if (found.isNothing())
        throw Failure(failures::objectNotSet);
    return found;
}

Value UserProperties::Add(const QString &Name, int Type, const Value & /*AddToFolderFields*/,
                          const Value & /*DisplayFormat*/) {
    const auto type = static_cast<PropertyType>(Type);
    const std::array known{PropertyType::Text, PropertyType::Number, PropertyType::Date, PropertyType::YesNo};
    if (Name.isEmpty() || std::find(known.begin(), known.end(), type) == known.end())
        throw Failure(failures::invalidCall);
    if (const Property *standing = m_item->content().findProperty(Name)) {
        if (standing->type != type)
            throw Failure(failures::invalidCall,
                          QStringLiteral("The property \"%1\" exists with another type.").arg(Name));
        return named(standing->name);
    }
    m_item->putProperty({Name, type, {}});
    return named(Name);
}

void UserProperties::Remove(int Index) {
    const QList<Property> &properties = m_item->content().properties();
    m_item->content().removeProperty(QString(properties.at(positionFrom(Index, properties.size())).name));
}

} // namespace desk::objects

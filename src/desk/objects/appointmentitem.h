/// Appointments in a calendar.
#pragma once

#include "desk/objects/item.h"

namespace desk::objects {

class AppointmentItem : public Item {
    Q_OBJECT
    Q_PROPERTY(DateTime Start READ start WRITE setStart)
    Q_PROPERTY(DateTime End READ end WRITE setEnd)
    Q_PROPERTY(QString Location READ location WRITE setLocation)

  public:
    using Item::Item;

    [[nodiscard]] int objectClass() const override { return 26; }
    [[nodiscard]] DateTime start() const { return fields().startAt; }
    void setStart(DateTime value) { put(&ItemRecord::startAt, value, "Start"); }
    [[nodiscard]] DateTime end() const { return fields().dueAt; }
    void setEnd(DateTime value) { put(&ItemRecord::dueAt, value, "End"); }
    [[nodiscard]] QString location() const { return fields().location; }
    void setLocation(const QString &value) { put(&ItemRecord::location, value, "Location"); }
};

} // namespace desk::objects

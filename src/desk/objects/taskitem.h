/// Tasks.
#pragma once

#include "desk/objects/item.h"

namespace desk::objects {

class TaskItem : public Item {
    Q_OBJECT
    Q_PROPERTY(DateTime StartDate READ startDate WRITE setStartDate)
    Q_PROPERTY(DateTime DueDate READ dueDate WRITE setDueDate)
    Q_PROPERTY(int Status READ status WRITE setStatus)
    Q_PROPERTY(int PercentComplete READ percentComplete WRITE setPercentComplete)
    Q_PROPERTY(bool Complete READ complete WRITE setComplete)
    Q_PROPERTY(QString Owner READ owner WRITE setOwner)

  public:
    using Item::Item;

    [[nodiscard]] int objectClass() const override { return 48; }
    [[nodiscard]] DateTime startDate() const { return fields().startAt; }
    void setStartDate(DateTime value) { put(&ItemRecord::startAt, value, "StartDate"); }
    /// The zero date is no date.
    [[nodiscard]] DateTime dueDate() const { return fields().dueAt; }
    void setDueDate(DateTime value) { put(&ItemRecord::dueAt, value, "DueDate"); }
    /// 0 not started, 1 in progress, 2 complete, 3 waiting, 4 deferred.
    [[nodiscard]] int status() const { return fields().taskStatus; }
    void setStatus(int value) { put(&ItemRecord::taskStatus, value, "Status"); }
    [[nodiscard]] int percentComplete() const { return fields().percentComplete; }
    void setPercentComplete(int value) { put(&ItemRecord::percentComplete, value, "PercentComplete"); }
    [[nodiscard]] bool complete() const { return status() == completeStatus; }
    void setComplete(bool value);
    [[nodiscard]] QString owner() const { return fields().owner; }
    void setOwner(const QString &value) { put(&ItemRecord::owner, value, "Owner"); }

  private:
    static constexpr int completeStatus = 2;
};

} // namespace desk::objects

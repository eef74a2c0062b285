/// Contacts: what the address book is made of.
#pragma once

#include "desk/objects/item.h"

namespace desk::objects {

class ContactItem : public Item {
    Q_OBJECT
    Q_PROPERTY(QString FullName READ fullName WRITE setFullName)
    Q_PROPERTY(QString Email1Address READ email1Address WRITE setEmail1Address)
    Q_PROPERTY(QString BusinessTelephoneNumber READ businessTelephone WRITE setBusinessTelephone)
    Q_PROPERTY(QString CompanyName READ company WRITE setCompany)
    Q_PROPERTY(QString Department READ department WRITE setDepartment)

  public:
    using Item::Item;

    [[nodiscard]] int objectClass() const override { return 40; }
    [[nodiscard]] QString fullName() const { return fields().fullName; }
    /// Also the subject, as long as the contact has no other.
    void setFullName(const QString &value);
    [[nodiscard]] QString email1Address() const { return fields().email1Address; }
    void setEmail1Address(const QString &value) { put(&ItemRecord::email1Address, value, "Email1Address"); }
    [[nodiscard]] QString businessTelephone() const { return fields().businessTelephone; }
    void setBusinessTelephone(const QString &value) {
        put(&ItemRecord::businessTelephone, value, "BusinessTelephoneNumber");
    }
    [[nodiscard]] QString company() const { return fields().company; }
    void setCompany(const QString &value) { put(&ItemRecord::company, value, "CompanyName"); }
    [[nodiscard]] QString department() const { return fields().department; }
    void setDepartment(const QString &value) { put(&ItemRecord::department, value, "Department"); }
};

} // namespace desk::objects

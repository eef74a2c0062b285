/// The handles of items: any item, its properties and its attachments.
#pragma once

#include "orvelle/host/handle.h"

namespace host {

class MAPIFolder;
class Inspector;

/// Whether an item could not be saved or moved since somebody else has saved it, or taken it away, in the meantime.
[[nodiscard]] inline bool isChangedElsewhere(const Failure &failure) {
    return failure.number() == failures::itemChanged || failure.number() == failures::itemGone;
}

class UserProperty : public Handle {
  public:
    using Handle::Handle;
    [[nodiscard]] QString Name() const { return text("Name"); }
    [[nodiscard]] Value value() const { return get("Value"); }
    void setValue(const Value &value) const { put("Value", value); }
    /// As `tryPut`.
    void tryValue(const Value &value) const { tryPut("Value", value); }
};

class UserProperties : public Handle {
  public:
    using Handle::Handle;
    [[nodiscard]] qint32 Count() const { return number("Count"); }
    /// Nothing for a missing name.
    [[nodiscard]] UserProperty Find(const QString &name) const { return call("Find", {name}); }
    /// Says which names are looked for next; see `readAhead`.
    void findAhead(const QStringList &names) const {
        std::vector<automation::Question> questions;
        for (const QString &name : names)
            questions.push_back({"Find", {name}});
        ahead(questions);
    }
    /// Types: 1 text, 3 number, 5 date-time, 6 yes or no. An existing property of the name and type is given back.
    [[nodiscard]] UserProperty Add(const QString &name, qint32 type, bool addToFolder = false) const {
        return call("Add", {name, type, addToFolder});
    }
    /// By name or by position from 1; fails for a missing one.
    [[nodiscard]] UserProperty Item(const Value &index) const { return call("Item", {index}); }
    /// Writes the value of the one with the name, as `tryPut` does.
    void trySet(const QString &name, const Value &value) const { tryPut({{"Item", {name}}}, "Value", value); }
};

class Attachment : public Handle {
  public:
    using Handle::Handle;
    /// 1 by value, 5 embedded item, 6 OLE object.
    [[nodiscard]] qint32 Type() const { return number("Type"); }
    [[nodiscard]] QString FileName() const { return text("FileName"); }
    [[nodiscard]] QString DisplayName() const { return text("DisplayName"); }
    void SaveAsFile(const QString &path) const { call("SaveAsFile", {path}); }
    void Delete() const { call("Delete"); }
};

class Attachments : public Handle {
  public:
    using Handle::Handle;
    [[nodiscard]] qint32 Count() const { return number("Count"); }
    [[nodiscard]] Attachment Item(qint32 index) const { return call("Item", {index}); }
    /// Copies the file, which may be deleted at once.
    Attachment Add(const QString &path, qint32 type, const QString &displayName) const {
        return call("Add", {path, type, Value::Missing{}, displayName});
    }
};

class Recipient : public Handle {
  public:
    using Handle::Handle;
    [[nodiscard]] QString Name() const { return text("Name"); }
    [[nodiscard]] QString Address() const { return text("Address"); }
    bool Resolve() const { return toBool(call("Resolve")); }
};

class AddressEntry : public Handle {
  public:
    using Handle::Handle;
    [[nodiscard]] QString Name() const { return text("Name"); }
    [[nodiscard]] QString Address() const { return text("Address"); }
    /// "EX" for a user of the mail system itself.
    [[nodiscard]] QString Type() const { return text("Type"); }
    [[nodiscard]] QString ID() const { return text("ID"); }
    /// The field of a property tag.
    [[nodiscard]] Value Fields(qint32 tag) const { return call("Fields", {tag}); }
};

/// An item of any class.
class Item : public Handle {
  public:
    using Handle::Handle;
    Item(const Handle &handle) : Handle(handle) {}

    [[nodiscard]] QString MessageClass() const { return text("MessageClass"); }
    void MessageClass(const QString &value) const { put("MessageClass", value); }
    [[nodiscard]] QString Subject() const { return text("Subject"); }
    void Subject(const QString &value) const { put("Subject", value); }
    [[nodiscard]] QString Body() const { return text("Body"); }
    void Body(const QString &value) const { put("Body", value); }
    [[nodiscard]] QString HTMLBody() const { return text("HTMLBody"); }
    void HTMLBody(const QString &value) const { put("HTMLBody", value); }
    [[nodiscard]] qint32 BodyFormat() const { return number("BodyFormat"); }
    void BodyFormat(qint32 value) const { put("BodyFormat", value); }
    [[nodiscard]] qint32 Importance() const { return number("Importance"); }
    void Importance(qint32 value) const { put("Importance", value); }
    [[nodiscard]] qint32 Sensitivity() const { return number("Sensitivity"); }
    void Sensitivity(qint32 value) const { put("Sensitivity", value); }
    [[nodiscard]] bool UnRead() const { return flag("UnRead"); }
    void UnRead(bool value) const { put("UnRead", value); }
    [[nodiscard]] QString BillingInformation() const { return text("BillingInformation"); }
    void BillingInformation(const QString &value) const { put("BillingInformation", value); }
    [[nodiscard]] qint32 Size() const { return number("Size"); }
    [[nodiscard]] bool Saved() const { return flag("Saved"); }
    [[nodiscard]] QString EntryID() const { return text("EntryID"); }
    [[nodiscard]] MAPIFolder Parent() const;
    [[nodiscard]] host::Attachments Attachments() const { return get("Attachments"); }
    [[nodiscard]] host::UserProperties UserProperties() const { return get("UserProperties"); }
    /// `UserProperties().Find(name)`.
    [[nodiscard]] UserProperty FindProperty(const QString &name) const {
        return callThrough({{"UserProperties", {}}}, "Find", {name});
    }
    /// `UserProperties().Add(name, type)`.
    [[nodiscard]] UserProperty AddProperty(const QString &name, qint32 type) const {
        return callThrough({{"UserProperties", {}}}, "Add", {name, type, false});
    }
    [[nodiscard]] Inspector GetInspector() const;

    void Save() const { call("Save"); }
    /// 0 saves, 1 discards, 2 asks.
    void Close(qint32 saveMode) const { call("Close", {saveMode}); }
    /// A new item in the same folder.
    Item Copy() const { return call("Copy"); }
    /// The item at its new place.
    Item Move(const MAPIFolder &folder) const;
    void Delete() const { call("Delete"); }
    void Display() const { call("Display"); }
    void PrintOut() const { call("PrintOut"); }
};

class PostItem : public Item {
  public:
    using Item::Item;
    void Post() const { call("Post"); }
};

class MailItem : public Item {
  public:
    using Item::Item;
    [[nodiscard]] QString To() const { return text("To"); }
    void To(const QString &value) const { put("To", value); }
    [[nodiscard]] QString SentOnBehalfOfName() const { return text("SentOnBehalfOfName"); }
    void SentOnBehalfOfName(const QString &value) const { put("SentOnBehalfOfName", value); }
    [[nodiscard]] QString ReplyRecipientNames() const { return text("ReplyRecipientNames"); }
    void ReplyRecipientNames(const QString &value) const { put("ReplyRecipientNames", value); }
    [[nodiscard]] bool ReadReceiptRequested() const { return flag("ReadReceiptRequested"); }
    void ReadReceiptRequested(bool value) const { put("ReadReceiptRequested", value); }
    [[nodiscard]] MAPIFolder SaveSentMessageFolder() const;
    void SaveSentMessageFolder(const MAPIFolder &folder) const;
    [[nodiscard]] qint32 FlagStatus() const { return number("FlagStatus"); }
    void FlagStatus(qint32 value) const { put("FlagStatus", value); }
    [[nodiscard]] QString FlagRequest() const { return text("FlagRequest"); }
    void FlagRequest(const QString &value) const { put("FlagRequest", value); }
    void Send() const { call("Send"); }
};

class ContactItem : public Item {
  public:
    using Item::Item;
    [[nodiscard]] QString FullName() const { return text("FullName"); }
    [[nodiscard]] QString CompanyName() const { return text("CompanyName"); }
    [[nodiscard]] QString BusinessTelephoneNumber() const { return text("BusinessTelephoneNumber"); }
    [[nodiscard]] QString Email1Address() const { return text("Email1Address"); }
};

} // namespace host

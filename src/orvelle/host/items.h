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
};

class UserProperties : public Handle {
  public:
    using Handle::Handle;
    [[nodiscard]] qint32 Count() const { return number("Count"); }
    /// Nothing for a missing name.
    [[nodiscard]] UserProperty Find(const QString &name) const { return call("Find", {name}); }
    /// Types: 1 text, 3 number, 5 date-time, 6 yes or no. An existing property of the name and type is given back.
    [[nodiscard]] UserProperty Add(const QString &name, qint32 type, bool addToFolder = false) const {
        return call("Add", {name, type, addToFolder});
    }
    /// By name or by position from 1; fails for a missing one.
    [[nodiscard]] UserProperty Item(const Value &index) const { return call("Item", {index}); }
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
///
/// A writer that begins with `Try` writes where that can be done and goes on at once: nobody waits for it or learns of
/// a failure, not even of that of Nothing.
class Item : public Handle {
  public:
    using Handle::Handle;
    Item(const Handle &handle) : Handle(handle) {}

    [[nodiscard]] QString MessageClass() const { return text("MessageClass"); }
    void MessageClass(const QString &value) const { put("MessageClass", value); }
    [[nodiscard]] QString Subject() const { return text("Subject"); }
    void Subject(const QString &value) const { put("Subject", value); }
    void TrySubject(const QString &value) const { tryPut("Subject", value); }
    [[nodiscard]] QString Body() const { return text("Body"); }
    void Body(const QString &value) const { put("Body", value); }
    void TryBody(const QString &value) const { tryPut("Body", value); }
    [[nodiscard]] QString HTMLBody() const { return text("HTMLBody"); }
    void HTMLBody(const QString &value) const { put("HTMLBody", value); }
    void TryHTMLBody(const QString &value) const { tryPut("HTMLBody", value); }
    [[nodiscard]] qint32 BodyFormat() const { return number("BodyFormat"); }
    void BodyFormat(qint32 value) const { put("BodyFormat", value); }
    void TryBodyFormat(qint32 value) const { tryPut("BodyFormat", value); }
    [[nodiscard]] qint32 Importance() const { return number("Importance"); }
    void Importance(qint32 value) const { put("Importance", value); }
    void TryImportance(qint32 value) const { tryPut("Importance", value); }
    [[nodiscard]] qint32 Sensitivity() const { return number("Sensitivity"); }
    void Sensitivity(qint32 value) const { put("Sensitivity", value); }
    [[nodiscard]] bool UnRead() const { return flag("UnRead"); }
    void UnRead(bool value) const { put("UnRead", value); }
    [[nodiscard]] QString BillingInformation() const { return text("BillingInformation"); }
    void BillingInformation(const QString &value) const { put("BillingInformation", value); }
    void TryBillingInformation(const QString &value) const { tryPut("BillingInformation", value); }
    [[nodiscard]] qint32 Size() const { return number("Size"); }
    [[nodiscard]] bool Saved() const { return flag("Saved"); }
    [[nodiscard]] QString EntryID() const { return text("EntryID"); }
    [[nodiscard]] MAPIFolder Parent() const;
    [[nodiscard]] host::Attachments Attachments() const { return get("Attachments"); }
    [[nodiscard]] host::UserProperties UserProperties() const { return get("UserProperties"); }
    /// `UserProperties().Find(name)`.
    [[nodiscard]] UserProperty FindProperty(const QString &name) const {
        return ask({{"UserProperties", {}}, {"Find", {name}}});
    }
    /// `FindProperty(name).value()`; fails with 91 for a missing name.
    [[nodiscard]] Value PropertyValue(const QString &name) const {
        return ask({{"UserProperties", {}}, {"Find", {name}}, {"Value", {}}});
    }
    /// `FindProperty(name).setValue(value)`; fails with 91 for a missing name.
    void SetPropertyValue(const QString &name, const Value &value) const {
        putThrough({{"UserProperties", {}}, {"Find", {name}}}, "Value", value);
    }
    void TryPropertyValue(const QString &name, const Value &value) const {
        tryPut({{"UserProperties", {}}, {"Find", {name}}}, "Value", value);
    }
    /// `UserProperties().Add(name, type).setValue(value)`.
    void AddPropertyValue(const QString &name, qint32 type, const Value &value) const {
        putThrough({{"UserProperties", {}}, {"Add", {name, type, false}}}, "Value", value);
    }
    void TryAddPropertyValue(const QString &name, qint32 type, const Value &value) const {
        tryPut({{"UserProperties", {}}, {"Add", {name, type, false}}}, "Value", value);
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
    void TryTo(const QString &value) const { tryPut("To", value); }
    [[nodiscard]] QString SentOnBehalfOfName() const { return text("SentOnBehalfOfName"); }
    void SentOnBehalfOfName(const QString &value) const { put("SentOnBehalfOfName", value); }
    [[nodiscard]] QString ReplyRecipientNames() const { return text("ReplyRecipientNames"); }
    void ReplyRecipientNames(const QString &value) const { put("ReplyRecipientNames", value); }
    [[nodiscard]] bool ReadReceiptRequested() const { return flag("ReadReceiptRequested"); }
    void ReadReceiptRequested(bool value) const { put("ReadReceiptRequested", value); }
    void TryReadReceiptRequested(bool value) const { tryPut("ReadReceiptRequested", value); }
    [[nodiscard]] MAPIFolder SaveSentMessageFolder() const;
    void SaveSentMessageFolder(const MAPIFolder &folder) const;
    [[nodiscard]] qint32 FlagStatus() const { return number("FlagStatus"); }
    void FlagStatus(qint32 value) const { put("FlagStatus", value); }
    void TryFlagStatus(qint32 value) const { tryPut("FlagStatus", value); }
    [[nodiscard]] QString FlagRequest() const { return text("FlagRequest"); }
    void FlagRequest(const QString &value) const { put("FlagRequest", value); }
    void TryFlagRequest(const QString &value) const { tryPut("FlagRequest", value); }
    /// The message that this one answers, which keeps their thread. A host may have no such member.
    void TryAnsweredItem(const Item &value) const { tryPut("AnsweredItem", value); }
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

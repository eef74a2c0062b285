/// An opened item of any class.
#pragma once

#include "desk/content/itemcontent.h"
#include "desk/objects/sessionobject.h"

namespace desk::objects {

class Inspector;
class MAPIFolder;

/// The events apart, since one of them is named as a member is.
class ItemEvents : public SessionObject {
    Q_OBJECT
    Q_CLASSINFO("Events", "Open Close Read Write Send PropertyChange CustomPropertyChange")

  public:
    using SessionObject::SessionObject;

  Q_SIGNALS:
    /// A window for the item is about to open, close.
    void Open(bool *Cancel);
    void Close(bool *Cancel);
    /// The item has been opened in a window.
    void Read();
    /// A save is about to be written. A handler may change and save the item; what it saved is not written again.
    void Write(bool *Cancel);
    void Send(bool *Cancel);
    void PropertyChange(const QString &Name);
    void CustomPropertyChange(const QString &Name);
};

/// What an item holds is its own until it is saved: it was read when the item was opened, and two objects of one stored
/// item know nothing of each other. The later of two saves fails with 0x80040109. Once the item has been deleted, its
/// members fail with 0x8004010A.
class Item : public ItemEvents {
    Q_OBJECT
    Q_PROPERTY(QString MessageClass READ messageClass WRITE setMessageClass)
    Q_PROPERTY(QString Subject READ subject WRITE setSubject)
    Q_PROPERTY(QString ConversationTopic READ subject)
    Q_PROPERTY(QString Body READ body WRITE setBody)
    Q_PROPERTY(QString HTMLBody READ htmlBody WRITE setHtmlBody)
    Q_PROPERTY(int BodyFormat READ bodyFormat WRITE setBodyFormat)
    Q_PROPERTY(int Importance READ importance WRITE setImportance)
    Q_PROPERTY(int Sensitivity READ sensitivity WRITE setSensitivity)
    Q_PROPERTY(bool UnRead READ unread WRITE setUnread)
    Q_PROPERTY(QString BillingInformation READ billingInformation WRITE setBillingInformation)
    Q_PROPERTY(QString Categories READ categories WRITE setCategories)
    Q_PROPERTY(int Size READ size)
    Q_PROPERTY(bool Saved READ saved)
    Q_PROPERTY(QString EntryID READ entryId)
    Q_PROPERTY(DateTime CreationTime READ creationTime)
    Q_PROPERTY(DateTime LastModificationTime READ lastModificationTime)
    Q_PROPERTY(Value Parent READ parent)
    Q_PROPERTY(Value GetInspector READ inspectorValue)
    Q_PROPERTY(int Class READ objectClass)

  public:
    Item(std::weak_ptr<desk::Session> session, Store &store, const ItemRecord &record);

    [[nodiscard]] QString messageClass() const { return fields().messageClass; }
    void setMessageClass(const QString &value) { put(&ItemRecord::messageClass, value, "MessageClass"); }
    [[nodiscard]] QString subject() const { return fields().subject; }
    void setSubject(const QString &value) { put(&ItemRecord::subject, value, "Subject"); }
    /// Plain text; that of the HTML body where only this was given. Setting one body makes the other one follow.
    [[nodiscard]] QString body();
    void setBody(const QString &value);
    /// Empty for an item of plain text.
    [[nodiscard]] QString htmlBody();
    void setHtmlBody(const QString &value);
    /// 0 unspecified, 1 plain, 2 HTML, 3 rich text.
    [[nodiscard]] int bodyFormat() const { return fields().bodyFormat; }
    void setBodyFormat(int value);
    [[nodiscard]] int importance() const { return fields().importance; }
    void setImportance(int value);
    [[nodiscard]] int sensitivity() const { return fields().sensitivity; }
    void setSensitivity(int value);
    [[nodiscard]] bool unread() const { return fields().unread; }
    void setUnread(bool value) { put(&ItemRecord::unread, value, "UnRead"); }
    [[nodiscard]] QString billingInformation() const { return fields().billingInformation; }
    void setBillingInformation(const QString &value) {
        put(&ItemRecord::billingInformation, value, "BillingInformation");
    }
    [[nodiscard]] QString categories() const { return fields().categories; }
    void setCategories(const QString &value) { put(&ItemRecord::categories, value, "Categories"); }
    [[nodiscard]] int size();
    /// False for a new item and for one with changes.
    [[nodiscard]] bool saved() const;
    /// Empty until the first save.
    [[nodiscard]] QString entryId() const { return fields().entryId; }
    [[nodiscard]] DateTime creationTime() const { return fields().createdAt; }
    [[nodiscard]] DateTime lastModificationTime() const { return fields().modifiedAt; }
    [[nodiscard]] Value parent() const;
    /// The item's window; made, not yet shown, where there is none.
    [[nodiscard]] Value inspectorValue();
    [[nodiscard]] virtual int objectClass() const = 0;

    Q_INVOKABLE Value Attachments(const Value &Index = Value::Missing{});
    Q_INVOKABLE Value UserProperties(const Value &Name = Value::Missing{});

    /// One commit, none for an item without changes; `Write` is raised in either case.
    Q_INVOKABLE void Save();
    /// 0 saves, 1 discards the changes, 2 asks where there is a person to ask and saves otherwise.
    Q_INVOKABLE void Close(int SaveMode);
    /// A new saved item in the same folder, with everything this one has.
    Q_INVOKABLE Value Copy();
    /// Puts the item into another folder, with its changes, and closes its window. Gives the item, which is this
    /// object. Fails with 0x80004004 where a handler of `Write` cancels the save of the changes: nothing has happened
    /// then.
    Q_INVOKABLE Value Move(const Value &DestFldr);
    /// Into the deleted items; for ever from there.
    Q_INVOKABLE void Delete();
    Q_INVOKABLE void Display(const Value &Modal = Value::Missing{});
    /// Writes the item to a file: type 0 as plain text, 5 as HTML, any other as an Internet message.
    Q_INVOKABLE void SaveAs(const QString &Path, const Value &Type = Value::Missing{});
    /// Prints the body as it stands, saved or not, once the call is over: no client waits for paper, or for a person
    /// who reads what became of it.
    Q_INVOKABLE void PrintOut();

    [[nodiscard]] const ItemRecord &fields() const;
    [[nodiscard]] ItemContent &content();
    [[nodiscard]] Store &store() const { return m_content.store(); }
    /// Sets a property and tells of it.
    void putProperty(const Property &property);
    /// The properties that the form of the item's class brings.
    void fillFrom(const QList<Property> &properties);
    /// Ends the item's window, if it has one, without a look at the changes.
    void closeWindow();
    /// As `Move`, by place.
    void moveTo(Store &store, FolderId folder);

  protected:
    template <class T>
    void put(T ItemRecord::*field, const T &value, const char *name) {
        if (content().set(field, value))
            tell(name);
    }
    void tell(const char *name);
    /// Where a save puts a new item; its folder, unless a class knows better.
    virtual void choosePlace() {}
    /// Saves without asking the handlers of `Write`.
    void commit();

  private:
    [[nodiscard]] std::shared_ptr<Inspector> window();

    ItemContent m_content;
    bool m_isGone = false;
    bool m_isClosing = false;
};

} // namespace desk::objects

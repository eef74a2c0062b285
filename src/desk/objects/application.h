/// The top of the object model.
#pragma once

#include "desk/objects/sessionobject.h"

namespace desk::objects {

/// The events apart, since one of them is named as a member is.
class ApplicationEvents : public SessionObject {
    Q_OBJECT
    Q_CLASSINFO("Events", "ItemSend Quit")

  public:
    using SessionObject::SessionObject;

  Q_SIGNALS:
    void ItemSend(const Value &Item, bool *Cancel);
    void Quit();
};

class Application : public ApplicationEvents {
    Q_OBJECT
    Q_PROPERTY(QString Name READ name)
    Q_PROPERTY(QString Version READ version)

  public:
    using ApplicationEvents::ApplicationEvents;

    [[nodiscard]] QString name() const { return QStringLiteral("Desk"); }
    [[nodiscard]] QString version() const { return QStringLiteral("12.0"); }

    /// `Type` is "MAPI".
    Q_INVOKABLE Value GetNamespace(const QString &Type);
    /// The window in front, of any kind; Nothing where there is none.
    Q_INVOKABLE Value ActiveWindow();
    Q_INVOKABLE Value ActiveExplorer();
    Q_INVOKABLE Value ActiveInspector();
    Q_INVOKABLE Value Explorers(const Value &Index = Value::Missing{});
    Q_INVOKABLE Value Inspectors(const Value &Index = Value::Missing{});
    /// A new unsaved item: 0 mail, 1 appointment, 2 contact, 3 task, 6 post.
    Q_INVOKABLE Value CreateItem(int ItemType);
    /// A new unsaved mail from a message file, as `SaveAs` leaves one, with whoever wrote it as its sender: in the
    /// folder, or in the drafts. Fails with 53 where there is no such file.
    Q_INVOKABLE Value CreateItemFromTemplate(const QString &TemplatePath, const Value &InFolder = Value::Missing{});
    /// Sends what lies submitted in the Outbox; gives the number of messages.
    Q_INVOKABLE int DeliverNow();
    /// Ends the host.
    Q_INVOKABLE void Quit();
};

} // namespace desk::objects

/// The library's objects.
#pragma once

#include "automation/local.h"

#include <functional>

namespace safeobjects {

using SessionSource = std::function<automation::ObjectPtr()>;

/// A wrapper around an item of any class. Using it before it has an item fails with 91.
class SafeItem : public automation::Exposed {
    Q_OBJECT
    Q_PROPERTY(QString AuthKey READ authKey WRITE setAuthKey)
    Q_PROPERTY(Value Item READ item WRITE setItem)
    Q_PROPERTY(Value Sender READ sender)
    Q_PROPERTY(QString Body READ body)
    Q_PROPERTY(QString HTMLBody READ htmlBody)
    Q_PROPERTY(QString Subject READ subject)
    Q_PROPERTY(QString Email1Address READ email1Address)

  public:
    /// \param kind  the type's name, such as "SafeMailItem".
    explicit SafeItem(QString kind) : m_kind(std::move(kind)) {}

    [[nodiscard]] QString typeName() const override { return m_kind; }

    [[nodiscard]] QString authKey() const { return m_authKey; }
    void setAuthKey(const QString &key) { m_authKey = key; }
    [[nodiscard]] Value item() const { return m_item; }
    /// Fails with 424 for a value that is no object.
    void setItem(const Value &item) { m_item = item.object(); }

    [[nodiscard]] Value sender() const { return wrapped().get("Sender"); }
    [[nodiscard]] QString body() const;
    [[nodiscard]] QString htmlBody() const;
    [[nodiscard]] QString subject() const;
    [[nodiscard]] QString email1Address() const;

    /// Type 3 writes the whole message.
    Q_INVOKABLE void SaveAs(const QString &Path, int Type = 3);
    Q_INVOKABLE void Send();

  private:
    [[nodiscard]] automation::Object &wrapped() const;

    QString m_kind;
    QString m_authKey;
    automation::ObjectPtr m_item;
};

/// What the library does with a whole session.
class MAPIUtils : public automation::Exposed {
    Q_OBJECT
    Q_PROPERTY(QString AuthKey READ authKey WRITE setAuthKey)

  public:
    explicit MAPIUtils(SessionSource session) : m_session(std::move(session)) {}

    [[nodiscard]] QString authKey() const { return m_authKey; }
    void setAuthKey(const QString &key) { m_authKey = key; }

    Q_INVOKABLE Value GetItemFromID(const QString &EntryID, const Value &StoreID = Value::Missing{});
    /// Sends what lies in the Outbox.
    Q_INVOKABLE void DeliverNow();
    /// The library lets go of what it holds. It is usable again afterwards.
    Q_INVOKABLE void Cleanup() {}

  private:
    QString m_authKey;
    SessionSource m_session;
};

/// The address books of the session.
class AddressLists : public automation::Exposed {
    Q_OBJECT
    Q_PROPERTY(int Count READ count)

  public:
    explicit AddressLists(SessionSource session) : m_session(std::move(session)) {}

    [[nodiscard]] int count();
    /// From 1. Each has an `ID`.
    Q_INVOKABLE Value Item(int Index);

  private:
    SessionSource m_session;
};

/// The add-in, as far as programs ask for it: its version.
class ButtonHolder : public automation::Exposed {
    Q_OBJECT
    Q_PROPERTY(int FileVersion READ version)

  public:
    [[nodiscard]] QString typeName() const override { return QStringLiteral("cButtonHolder"); }
    [[nodiscard]] int version() const;
};

} // namespace safeobjects

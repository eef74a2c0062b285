/// A small host with every kind of member, for tests in one process and across the socket.
#pragma once

#include "automation/local.h"
#include "automation/remote.h"

namespace sample {

using automation::Exposed;

/// Types that do not cross, and so stay internal.
class Inner : public Exposed {
    Q_OBJECT
    Q_CLASSINFO("Events", "Renamed")
    Q_PROPERTY(QString Name READ name WRITE setName)
    Q_PROPERTY(QString Kind READ kind CONSTANT)
    Q_PROPERTY(QStringList Lines READ lines)

  public:
    [[nodiscard]] QString name() const { return m_name; }
    [[nodiscard]] QString kind() const {
        ++m_kindReads;
        return QStringLiteral("sample");
    }
    [[nodiscard]] int kindReads() const { return m_kindReads; }
    virtual void setName(const QString &name);
    [[nodiscard]] QStringList lines() const { return {}; }

    Q_INVOKABLE virtual QString Describe() const { return QStringLiteral("inner ") + m_name; }

  public Q_SLOTS:
    void internalSlot() {}

  Q_SIGNALS:
    void Renamed(const QString &name);

  private:
    QString m_name = QStringLiteral("unnamed");
    mutable int m_kindReads = 0;
};

class Sample : public Inner {
    Q_OBJECT
    Q_CLASSINFO("Events", "Write Saved Deeper CloseEvent All Listed Internal")
    Q_PROPERTY(Value Anything MEMBER m_anything)
    Q_PROPERTY(bool Flag MEMBER m_flag)
    Q_PROPERTY(qint16 Small MEMBER m_small)
    Q_PROPERTY(int Number MEMBER m_number)
    Q_PROPERTY(double Ratio MEMBER m_ratio)
    Q_PROPERTY(Currency Price MEMBER m_price)
    Q_PROPERTY(DateTime When MEMBER m_when)
    Q_PROPERTY(int Saves READ saves NOTIFY SavesChanged)
    Q_PROPERTY(Value Child READ child)
    Q_PROPERTY(ValueList List MEMBER m_list)
    Q_PROPERTY(int LivingChildren READ livingChildren)
    Q_PROPERTY(int ChildKindReads READ childKindReads)

  public:
    Sample();
    ~Sample() override;

    [[nodiscard]] int saves() const { return m_saves; }
    [[nodiscard]] Value child();
    [[nodiscard]] int livingChildren() const { return *m_living; }
    [[nodiscard]] int childKindReads() const { return m_child->kindReads(); }
    /// Fails with 5 for an empty name.
    void setName(const QString &name) override;

    Q_INVOKABLE QString Describe() const override { return QStringLiteral("sample ") + name(); }
    Q_INVOKABLE Value Echo(const Value &value) { return value; }
    Q_INVOKABLE QString Join(const QString &first, const QString &second = QStringLiteral("second"),
                             const Value &third = Value::Missing{}) const;
    Q_INVOKABLE int Add(int left, int right) const { return left + right; }
    Q_INVOKABLE void Fail(int number, const QString &description) const { throw Failure(number, description); }
    Q_INVOKABLE void Break() const { throw std::runtime_error("broken"); }
    Q_INVOKABLE Value NewChild(const QString &name);
    Q_INVOKABLE bool IsChild(const Value &object);
    Q_INVOKABLE bool IsSelf(const Value &object);
    /// Raises Write and, unless it is cancelled, Saved.
    Q_INVOKABLE bool Save();
    /// Raises Deeper with the level unless it is 0, and gives how many levels were reached below it.
    Q_INVOKABLE int Deepen(int level);
    Q_INVOKABLE void Close() { Q_EMIT CloseEvent(); }
    Q_INVOKABLE void RaiseAll(const Value &any);
    /// Raises Listed with the values.
    Q_INVOKABLE ValueList RaiseListed(const ValueList &values);
    /// The client that is calling.
    Q_INVOKABLE int Caller() const { return static_cast<int>(automation::currentClient()); }
    /// Does not come back for so long.
    Q_INVOKABLE void Block(int milliseconds) const;

  Q_SIGNALS:
    void Write(bool *cancel);
    void Saved(const QString &name);
    void Deeper(int level);
    void CloseEvent();
    void All(const Value &any, bool flag, int number, double ratio, const QString &text, Currency price, DateTime when,
             bool *first, bool *second);
    void Listed(const ValueList &values, const Value &any);
    void Internal(const QStringList &lines);
    /// No events, though their types cross.
    void SavesChanged(int saves);
    void Redrawn();

  private:
    Value m_anything;
    bool m_flag = false;
    qint16 m_small = 0;
    int m_number = 0;
    double m_ratio = 0;
    Currency m_price;
    DateTime m_when;
    ValueList m_list;
    int m_saves = 0;
    int m_reached = 0;
    std::shared_ptr<Inner> m_child;
    std::shared_ptr<int> m_living = std::make_shared<int>(0);
};

} // namespace sample

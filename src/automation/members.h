/// What a host class declares in its meta-object, made ready once a class: members by name, types worked out.
#pragma once

#include "platform/value/value.h"

#include <QMetaObject>
#include <QVarLengthArray>

#include <unordered_map>

namespace automation {

/// The types that cross.
enum class Kind { None, Any, Text, Boolean, Int16, Int32, Double, Money, Moment, Array, BooleanReference };

/// Room for one argument or result in its declared type, as the meta-object's calls want it.
class TypedSlot {
  public:
    /// An unset one of a kind.
    void prepare(Kind kind);
    /// The value in the kind's type. Fails with 13 where it has no such form, 6 where it does not fit.
    void assign(Kind kind, const Value &value);
    /// Null for the kind None.
    [[nodiscard]] void *address();
    [[nodiscard]] Value take();

  private:
    std::variant<std::monostate, Value, QString, bool, qint16, qint32, double, Currency, DateTime, ValueList> m_held;
};

/// The value at the address that a signal passed for a parameter.
Value readArgument(Kind kind, void *address);

class MemberTable {
  public:
    struct Property {
        int index;
        Kind kind;
        bool writable;
    };
    struct Function {
        int index;
        Kind result;
        std::vector<Kind> parameters;
    };
    struct Event {
        int index;
        std::vector<Kind> parameters;
        bool byReference; ///< whether any parameter is
    };
    /// All that a name stands for; a name may be an event beside a property or functions.
    struct Member {
        std::optional<Property> property;
        std::vector<Function> functions; ///< no two with the same number of parameters
        std::optional<Event> event;

        [[nodiscard]] const Function *function(qsizetype parameters) const;
    };

    /// The table of a class; lives as long as the process.
    static const MemberTable &of(const QMetaObject &metaObject);

    [[nodiscard]] const Member *find(const QString &name) const;
    /// The properties that never change, by name.
    [[nodiscard]] const std::vector<std::pair<QString, Property>> &constants() const { return m_constants; }
    [[nodiscard]] const QString &className() const { return m_className; }

  private:
    explicit MemberTable(const QMetaObject &metaObject);
    void addProperties(const QMetaObject &metaObject);
    void addMethods(const QMetaObject &metaObject);

    struct Hash {
        std::size_t operator()(const QString &name) const;
    };
    struct Equal {
        bool operator()(const QString &left, const QString &right) const {
            return left.compare(right, Qt::CaseInsensitive) == 0;
        }
    };
    std::unordered_map<QString, Member, Hash, Equal> m_members;
    std::vector<std::pair<QString, Property>> m_constants;
    QString m_className;
};

} // namespace automation

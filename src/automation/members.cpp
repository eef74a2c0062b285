#include "automation/members.h"

#include "automation/local.h"
#include "platform/value/convert.h"

#include <QMetaMethod>
#include <QMetaProperty>
#include <QSet>

#include <mutex>

namespace automation {
namespace {

std::optional<Kind> kindOf(QMetaType type) {
    static const std::pair<QMetaType, Kind> kinds[] = {
        {QMetaType::fromType<void>(), Kind::None},       {QMetaType::fromType<Value>(), Kind::Any},
        {QMetaType::fromType<QString>(), Kind::Text},    {QMetaType::fromType<bool>(), Kind::Boolean},
        {QMetaType::fromType<qint16>(), Kind::Int16},    {QMetaType::fromType<qint32>(), Kind::Int32},
        {QMetaType::fromType<double>(), Kind::Double},   {QMetaType::fromType<Currency>(), Kind::Money},
        {QMetaType::fromType<DateTime>(), Kind::Moment}, {QMetaType::fromType<ValueList>(), Kind::Array}};
    for (const auto &[known, kind] : kinds)
        if (known == type)
            return kind;
    return std::nullopt;
}

/// Nothing when one of them stays internal.
std::optional<std::vector<Kind>> parameterKinds(const QMetaMethod &method) {
    const bool isSignal = method.methodType() == QMetaMethod::Signal;
    std::vector<Kind> kinds;
    for (int i = 0; i < method.parameterCount(); ++i) {
        const QMetaType type = method.parameterMetaType(i);
        if (isSignal && type == QMetaType::fromType<bool *>())
            kinds.push_back(Kind::BooleanReference);
        else if (const std::optional<Kind> kind = kindOf(type))
            kinds.push_back(*kind);
        else
            return std::nullopt;
    }
    return kinds;
}

/// The signals that a class and its bases name as events.
QSet<QByteArray> eventSignals(const QMetaObject &metaObject) {
    QSet<QByteArray> names;
    for (int i = 0; i < metaObject.classInfoCount(); ++i) {
        const QMetaClassInfo info = metaObject.classInfo(i);
        if (qstrcmp(info.name(), "Events") != 0)
            continue;
        for (const QByteArray &name : QByteArray(info.value()).split(' '))
            names.insert(name);
    }
    return names;
}

/// An event that has the name of another member is declared with this ending.
QString eventName(QString signal) {
    constexpr QLatin1String ending("Event");
    if (signal.size() > ending.size() && signal.endsWith(ending))
        signal.chop(ending.size());
    return signal;
}

} // namespace

void TypedSlot::prepare(Kind kind) {
    switch (kind) {
    case Kind::Any:
        m_held.emplace<Value>();
        break;
    case Kind::Text:
        m_held.emplace<QString>();
        break;
    case Kind::Boolean:
        m_held.emplace<bool>();
        break;
    case Kind::Int16:
        m_held.emplace<qint16>();
        break;
    case Kind::Int32:
        m_held.emplace<qint32>();
        break;
    case Kind::Double:
        m_held.emplace<double>();
        break;
    case Kind::Money:
        m_held.emplace<Currency>();
        break;
    case Kind::Moment:
        m_held.emplace<DateTime>();
        break;
    case Kind::Array:
        m_held.emplace<ValueList>();
        break;
    case Kind::None:
    case Kind::BooleanReference:
        m_held.emplace<std::monostate>();
        break;
    }
}

void TypedSlot::assign(Kind kind, const Value &value) {
    if (kind == Kind::Any) {
        m_held = value;
        return;
    }
    // What is no plain value has no form in any of the other types, whatever number its conversion alone would give.
    if (value.isNull() || value.isMissing() || value.isObject())
        throw Failure(failures::typeMismatch);
    switch (kind) {
    case Kind::Text:
        m_held = toText(value);
        break;
    case Kind::Boolean:
        m_held = toBool(value);
        break;
    case Kind::Int16:
        m_held = toInt16(value);
        break;
    case Kind::Int32:
        m_held = toInt32(value);
        break;
    case Kind::Double:
        m_held = toDouble(value);
        break;
    case Kind::Money:
        m_held = toCurrency(value);
        break;
    case Kind::Moment:
        m_held = toDateTime(value);
        break;
    case Kind::Array:
        m_held = value.array();
        break;
    default:
        throw Failure(failures::typeMismatch);
    }
}

void *TypedSlot::address() {
    return std::visit(
        [](auto &held) -> void * {
            if constexpr (std::is_same_v<std::decay_t<decltype(held)>, std::monostate>)
                return nullptr;
            else
                return &held;
        },
        m_held);
}

Value TypedSlot::take() {
    return std::visit(
        [](auto &held) -> Value {
            if constexpr (std::is_same_v<std::decay_t<decltype(held)>, std::monostate>)
                return {};
            else
                return Value(std::move(held));
        },
        m_held);
}

Value readArgument(Kind kind, void *address) {
    switch (kind) {
    case Kind::Any:
        return *static_cast<const Value *>(address);
    case Kind::Text:
        return *static_cast<const QString *>(address);
    case Kind::Boolean:
        return *static_cast<const bool *>(address);
    case Kind::Int16:
        return *static_cast<const qint16 *>(address);
    case Kind::Int32:
        return *static_cast<const qint32 *>(address);
    case Kind::Double:
        return *static_cast<const double *>(address);
    case Kind::Money:
        return *static_cast<const Currency *>(address);
    case Kind::Moment:
        return *static_cast<const DateTime *>(address);
    case Kind::Array:
        return Value(*static_cast<const ValueList *>(address));
    case Kind::BooleanReference:
        return **static_cast<bool *const *>(address);
    case Kind::None:
        break;
    }
    return {};
}

const MemberTable::Function *MemberTable::Member::function(qsizetype parameters) const {
    for (const Function &candidate : functions)
        if (std::ssize(candidate.parameters) == parameters)
            return &candidate;
    return nullptr;
}

const MemberTable &MemberTable::of(const QMetaObject &metaObject) {
    static std::mutex guard;
    static std::unordered_map<const QMetaObject *, std::unique_ptr<const MemberTable>> tables;
    const std::lock_guard lock(guard);
    std::unique_ptr<const MemberTable> &table = tables[&metaObject];
    if (!table)
        table.reset(new MemberTable(metaObject));
    return *table;
}

MemberTable::MemberTable(const QMetaObject &metaObject)
    : m_className(QString::fromLatin1(metaObject.className()).section(QStringLiteral("::"), -1)) {
    addProperties(metaObject);
    addMethods(metaObject);
}

void MemberTable::addProperties(const QMetaObject &metaObject) {
    for (int i = Exposed::staticMetaObject.propertyCount(); i < metaObject.propertyCount(); ++i) {
        const QMetaProperty property = metaObject.property(i);
        const std::optional<Kind> kind = kindOf(property.metaType());
        if (!kind || !property.isReadable())
            continue;
        const QString name = QString::fromLatin1(property.name());
        const Property made{i, *kind, property.isWritable()};
        m_members[name].property = made;
        if (property.isConstant())
            m_constants.emplace_back(name, made);
    }
}

void MemberTable::addMethods(const QMetaObject &metaObject) {
    const QSet<QByteArray> events = eventSignals(metaObject);
    for (int i = Exposed::staticMetaObject.methodCount(); i < metaObject.methodCount(); ++i) {
        const QMetaMethod method = metaObject.method(i);
        std::optional<std::vector<Kind>> parameters = parameterKinds(method);
        const std::optional<Kind> result = kindOf(method.returnMetaType());
        if (!parameters || !result)
            continue;
        const QString name = QString::fromLatin1(method.name());
        if (method.methodType() == QMetaMethod::Signal) {
            // The clones of a signal stand for its default arguments; it is raised with all of them.
            if (events.contains(method.name()) && !(method.attributes() & QMetaMethod::Cloned)) {
                const bool byReference = std::ranges::count(*parameters, Kind::BooleanReference) > 0;
                m_members[eventName(name)].event = {i, std::move(*parameters), byReference};
            }
        } else if (method.methodType() == QMetaMethod::Method && method.access() == QMetaMethod::Public) {
            std::vector<Function> &functions = m_members[name].functions;
            // A derived class comes after its base and takes the place of what it declares again.
            std::erase_if(functions,
                          [&](const Function &other) { return other.parameters.size() == parameters->size(); });
            functions.push_back({i, *result, std::move(*parameters)});
        }
    }
}

const MemberTable::Member *MemberTable::find(const QString &name) const {
    const auto found = m_members.find(name);
    return found == m_members.end() ? nullptr : &found->second;
}

std::size_t MemberTable::Hash::operator()(const QString &name) const {
    std::size_t hash = 14695981039346656037U;
    for (const QChar sign : name)
        hash = (hash ^ sign.toCaseFolded().unicode()) * 1099511628211U;
    return hash;
}

} // namespace automation

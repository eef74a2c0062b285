#include "automation/wire.h"

#include <cstring>

namespace automation::wire {
namespace {

/// Part of the format: do not renumber.
enum class Tag : quint8 {
    Empty = 0,
    Null = 1,
    Missing = 2,
    False = 3,
    True = 4,
    Int16 = 5,
    Int32 = 6,
    Double = 7,
    Currency = 8,
    DateTime = 9,
    Text = 10,
    Nothing = 11,
    Object = 12,
    Array = 13,
};

/// Kind, call, target, number, the text's and the values' count.
constexpr quint32 smallestBody = 1 + 5 * 4;

/// More than any class has.
constexpr quint32 mostConstants = 64;

/// More steps than any use has.
constexpr qsizetype longestPath = 8;

class Writer {
  public:
    Writer(std::vector<char> &bytes, ObjectTable &objects) : m_bytes(bytes), m_objects(objects) {}

    template <class Number>
    requires std::is_arithmetic_v<Number> || std::is_enum_v<Number>
    void number(Number number) { raw(&number, sizeof number); }

    void text(const QString &text) {
        number(static_cast<quint32>(text.size()));
        raw(text.constData(), static_cast<std::size_t>(text.size()) * sizeof(QChar));
    }

    void value(const Value &value) {
        if (++m_values > mostValues)
            throw Failure(failures::outOfMemory, QStringLiteral("There are too many values to be sent at once."));
        std::visit([this](const auto &held) { write(held); }, value.held());
    }

    void values(const ValueList &values) {
        number(static_cast<quint32>(values.size()));
        for (const Value &each : values)
            value(each);
    }

  private:
    void raw(const void *data, std::size_t size) {
        const auto *begin = static_cast<const char *>(data);
        m_bytes.insert(m_bytes.end(), begin, begin + size);
    }

    void write(std::monostate) { number(Tag::Empty); }
    void write(Value::Null) { number(Tag::Null); }
    void write(Value::Missing) { number(Tag::Missing); }
    void write(bool held) { number(held ? Tag::True : Tag::False); }
    void write(qint16 held) { tagged(Tag::Int16, held); }
    void write(qint32 held) { tagged(Tag::Int32, held); }
    void write(double held) { tagged(Tag::Double, held); }
    void write(Currency held) { tagged(Tag::Currency, held.scaled()); }
    void write(DateTime held) { tagged(Tag::DateTime, held.days); }
    void write(const QString &held) {
        number(Tag::Text);
        text(held);
    }
    void write(const ObjectPtr &held) {
        if (!held) {
            number(Tag::Nothing);
            return;
        }
        const ObjectTable::Reference reference = m_objects.give(held);
        tagged(Tag::Object, reference.handle);
        text(reference.typeName);
        number(static_cast<quint32>(reference.constants.size()));
        for (const Constant &constant : reference.constants) {
            text(constant.member);
            value(constant.value);
        }
    }
    void write(const ValueList &held) {
        if (++m_depth > deepestArray)
            throw Failure(failures::invalidCall, QStringLiteral("The arrays are nested too deep to be sent."));
        number(Tag::Array);
        values(held);
        --m_depth;
    }
    template <class Number>
    void tagged(Tag tag, Number held) {
        number(tag);
        number(held);
    }

    std::vector<char> &m_bytes;
    ObjectTable &m_objects;
    qsizetype m_values = 0;
    int m_depth = 0;
};

/// Reads on until something is malformed; from then on everything reads as zero and `isWhole` is false.
class Reader {
  public:
    Reader(std::span<const char> body, ObjectTable &objects) : m_rest(body), m_objects(objects) {}

    template <class Number>
    Number number() {
        Number number{};
        if (const char *from = raw(sizeof number))
            std::memcpy(&number, from, sizeof number);
        return number;
    }

    QString text() {
        const std::size_t size = std::size_t{number<quint32>()} * sizeof(QChar);
        const char *from = raw(size);
        if (!from)
            return {};
        QString text(static_cast<qsizetype>(size / sizeof(QChar)), Qt::Uninitialized);
        std::memcpy(text.data(), from, size);
        return text;
    }

    Value value() {
        m_whole = m_whole && ++m_values <= mostValues;
        switch (number<Tag>()) {
        case Tag::Empty:
            return {};
        case Tag::Null:
            return Value::Null{};
        case Tag::Missing:
            return Value::Missing{};
        case Tag::False:
            return false;
        case Tag::True:
            return true;
        case Tag::Int16:
            return number<qint16>();
        case Tag::Int32:
            return number<qint32>();
        case Tag::Double:
            return number<double>();
        case Tag::Currency:
            return Currency::fromScaled(number<qint64>());
        case Tag::DateTime:
            return DateTime{number<double>()};
        case Tag::Text:
            return text();
        case Tag::Nothing:
            return Value::nothing();
        case Tag::Object:
            return object();
        case Tag::Array:
            return array();
        }
        m_whole = false;
        return {};
    }

    ValueList values() {
        const auto count = number<quint32>();
        // Each value has a byte at least: a count beyond the rest is a lie, and must not be allocated for.
        if (count > m_rest.size() || count > mostValues) {
            m_whole = false;
            return {};
        }
        ValueList values;
        values.reserve(static_cast<qsizetype>(count));
        for (quint32 i = 0; i < count && m_whole; ++i)
            values.append(value());
        return values;
    }

    [[nodiscard]] bool isWhole() const { return m_whole; }
    [[nodiscard]] bool atEnd() const { return m_rest.empty(); }
    [[nodiscard]] bool metStaleObject() const { return m_staleObject; }

  private:
    const char *raw(std::size_t size) {
        if (!m_whole || size > m_rest.size()) {
            m_whole = false;
            return nullptr;
        }
        const char *from = m_rest.data();
        m_rest = m_rest.subspan(size);
        return from;
    }

    Value array() {
        if (++m_depth > deepestArray || m_isConstant) {
            m_whole = false;
            return {};
        }
        Value array(values());
        --m_depth;
        return array;
    }

    Value object() {
        if (m_isConstant) {
            m_whole = false;
            return {};
        }
        ObjectTable::Reference reference{number<Handle>(), text()};
        reference.constants = constants();
        if (!m_whole)
            return {};
        ObjectPtr object = m_objects.take(reference);
        m_staleObject |= object == nullptr;
        return object;
    }

    std::vector<Constant> constants() {
        const auto count = number<quint32>();
        m_whole = m_whole && count <= mostConstants;
        m_isConstant = true;
        std::vector<Constant> constants;
        for (quint32 i = 0; i < count && m_whole; ++i) {
            QString member = text();
            Value constant = value();
            m_whole = m_whole && !constant.isObject();
            constants.push_back({std::move(member), std::move(constant)});
        }
        m_isConstant = false;
        return constants;
    }

    std::span<const char> m_rest;
    ObjectTable &m_objects;
    qsizetype m_values = 0;
    int m_depth = 0;
    bool m_whole = true;
    bool m_staleObject = false;
    bool m_isConstant = false;
};

bool isKnown(FrameKind kind) { return kind >= FrameKind::Hello && kind <= FrameKind::Farewell; }

} // namespace

Value packed(const Path &path) {
    ValueList questions;
    for (const Question &question : path)
        questions << Value(ValueList{question.member} + question.arguments);
    return Value(questions);
}

std::optional<Path> unpacked(const Value &value) {
    if (!value.isArray() || value.array().size() > longestPath)
        return std::nullopt;
    Path path;
    for (const Value &question : value.array()) {
        const bool isWhole = question.isArray() && !question.array().isEmpty() && question.array().first().isText();
        if (!isWhole)
            return std::nullopt;
        path.push_back({std::get<QString>(question.array().first().held()), question.array().mid(1)});
    }
    return path;
}

void encode(std::vector<char> &bytes, const Frame &frame, ObjectTable &objects) {
    const std::size_t start = bytes.size();
    try {
        Writer writer(bytes, objects);
        writer.number(quint32{0});
        writer.number(frame.kind);
        writer.number(frame.call);
        writer.number(frame.target);
        writer.number(frame.number);
        writer.text(frame.text);
        writer.values(frame.values);
        const std::size_t length = bytes.size() - start - sizeof(quint32);
        if (length > largestBody)
            throw Failure(failures::outOfMemory, QStringLiteral("The value is too large to be sent."));
        const auto written = static_cast<quint32>(length);
        std::memcpy(bytes.data() + start, &written, sizeof written);
    } catch (...) {
        bytes.resize(start);
        throw;
    }
}

std::optional<quint32> bodyLength(std::span<const char, 4> bytes) {
    quint32 length = 0;
    std::memcpy(&length, bytes.data(), sizeof length);
    if (length < smallestBody || length > largestBody)
        return std::nullopt;
    return length;
}

std::optional<Frame> decode(std::span<const char> body, ObjectTable &objects) {
    Reader reader(body, objects);
    Frame frame;
    frame.kind = reader.number<FrameKind>();
    frame.call = reader.number<quint32>();
    frame.target = reader.number<quint32>();
    frame.number = reader.number<qint32>();
    frame.text = reader.text();
    frame.values = reader.values();
    frame.staleObject = reader.metStaleObject();
    if (!reader.isWhole() || !reader.atEnd() || !isKnown(frame.kind))
        return std::nullopt;
    return frame;
}

} // namespace automation::wire

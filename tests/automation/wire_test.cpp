// The frame reader meets bytes that nobody vouches for.

#include "automation/wire.h"
#include "support/fakeobject.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

using namespace automation;
using namespace automation::wire;

namespace {

/// Gives out the objects that it made by their handles; anything above the last one is not held.
class Objects : public ObjectTable {
  public:
    Reference give(const ObjectPtr &object) override {
        for (std::size_t i = 0; i < m_objects.size(); ++i)
            if (m_objects[i] == object)
                return {static_cast<Handle>(i + 1), object->typeName(), i == 0 ? constants : std::vector<Constant>()};
        throw Failure(failures::typeMismatch);
    }
    ObjectPtr take(const Reference &reference) override {
        taken.push_back(reference);
        return reference.handle >= 1 && reference.handle <= m_objects.size() ? m_objects[reference.handle - 1]
                                                                             : nullptr;
    }
    [[nodiscard]] ObjectPtr first() const { return m_objects.front(); }

    std::vector<Constant> constants{{"Name", "first"}, {"Count", 3}};
    /// What the references that came in were.
    std::vector<Reference> taken;

  private:
    std::vector<ObjectPtr> m_objects{std::make_shared<support::FakeObject>("Plain"),
                                     std::make_shared<support::FakeObject>("Plain")};
};

class Wire : public testing::Test {
  protected:
    std::vector<char> encoded(const Frame &frame) {
        std::vector<char> bytes;
        encode(bytes, frame, objects);
        return bytes;
    }
    std::optional<Frame> decoded(std::span<const char> bytes) {
        const std::optional<quint32> length = bodyLength(bytes.first<4>());
        return length && *length == bytes.size() - 4 ? decode(bytes.subspan(4), objects) : std::nullopt;
    }
    /// Arrays in one another, so many deep.
    [[nodiscard]] static Value nested(int depth) {
        Value value("innermost");
        for (int i = 0; i < depth; ++i)
            value = Value(ValueList{i, value, "behind"});
        return value;
    }
    /// A frame with a value of every kind.
    [[nodiscard]] Frame full() const {
        return {FrameKind::Call,
                7,
                8,
                -9,
                QString::fromUtf8("Größe"),
                {Value(), Value(Value::Null{}), Value(Value::Missing{}), true, false, qint16(-1), 70000, 0.25,
                 Currency::fromScaled(-3), DateTime{36526.5}, "text", "", Value::nothing(), objects.first(), nested(3),
                 Value(ValueList())}};
    }

    Objects objects;
};

TEST_F(Wire, AFrameIsReadAsItWasWritten) {
    const std::optional<Frame> read = decoded(encoded(full()));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->kind, FrameKind::Call);
    EXPECT_EQ(read->call, 7U);
    EXPECT_EQ(read->target, 8U);
    EXPECT_EQ(read->number, -9);
    EXPECT_EQ(read->text, full().text);
    EXPECT_EQ(read->values, full().values);
    EXPECT_FALSE(read->staleObject);
    ASSERT_EQ(objects.taken.size(), 1U);
    const std::vector<Constant> &told = objects.taken[0].constants;
    ASSERT_EQ(told.size(), 2U);
    EXPECT_EQ(told[1].member, "Count");
    EXPECT_EQ(told[1].value, Value(3));
}

TEST_F(Wire, APathIsUnpackedAsItWasPackedOrNotAtAll) {
    const Path path{{"Items", {}}, {"Find", {"filter", 3}}};
    const std::optional<Path> read = unpacked(packed(path));
    ASSERT_TRUE(read && read->size() == 2);
    EXPECT_EQ((*read)[0].member, "Items");
    EXPECT_EQ((*read)[1].member, "Find");
    EXPECT_EQ((*read)[1].arguments, path[1].arguments);
    EXPECT_TRUE(unpacked(Value(ValueList())) && unpacked(Value(ValueList()))->empty());
    const Value step(ValueList{"Item"});
    const Value malformed[] = {Value(),
                               "Item",
                               Value(ValueList{"Item"}),
                               Value(ValueList{Value(ValueList())}),
                               Value(ValueList{Value(ValueList{1, "Item"})}),
                               Value(ValueList{step, Value()}),
                               Value(ValueList(1000, step))};
    for (const Value &wrong : malformed)
        EXPECT_FALSE(unpacked(wrong)) << wrong.kindName().toStdString();
}

TEST_F(Wire, NoObjectAndNoArrayIsAConstantOfAnother) {
    const Frame answer{.kind = FrameKind::Answer, .values = {objects.first()}};
    EXPECT_TRUE(decoded(encoded(answer)));
    for (const Value &wrong : {Value::nothing(), Value(ValueList())}) {
        objects.constants.push_back({"Parent", wrong});
        EXPECT_FALSE(decoded(encoded(answer))) << wrong.kindName().toStdString();
        objects.constants.pop_back();
    }
}

TEST_F(Wire, ArraysAreNestedSoDeepAndNoDeeper) {
    const Frame deepest{.kind = FrameKind::Put, .values = {nested(deepestArray), nested(deepestArray)}};
    const std::optional<Frame> read = decoded(encoded(deepest));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->values, deepest.values);
    std::vector<char> bytes;
    EXPECT_THROW(encode(bytes, {.kind = FrameKind::Put, .values = {nested(deepestArray + 1)}}, objects), Failure);
    EXPECT_TRUE(bytes.empty());

    // What no writer here writes: a million arrays, each with the next one in it, and counts that lie.
    constexpr char array = 13;
    std::vector<char> body = encoded({.kind = FrameKind::Put, .values = {0}});
    body.erase(body.begin(), body.begin() + 4);
    body.resize(body.size() - 5);
    std::vector<char> lying = body;
    for (int i = 0; i < 1'000'000; ++i)
        body.insert(body.end(), {array, 1, 0, 0, 0});
    EXPECT_FALSE(decode(body, objects));
    lying.insert(lying.end(), {array, char(0xFF), char(0xFF), 0, 0, 0, 0});
    EXPECT_FALSE(decode(lying, objects));
}

TEST_F(Wire, ValuesInArraysCountAsAnyOthers) {
    const Value half(ValueList(mostValues / 2, 1));
    std::vector<char> bytes;
    EXPECT_THROW(encode(bytes, {.kind = FrameKind::Put, .values = {half, half}}, objects), Failure);
    const std::optional<Frame> read = decoded(encoded({.kind = FrameKind::Put, .values = {half}}));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->values[0], half);
}

TEST_F(Wire, AHandleThatIsNotHeldIsTold) {
    std::vector<char> bytes = encoded({.kind = FrameKind::Put, .values = {objects.first()}});
    const std::string name("P\0l\0a\0i\0n\0", 10);
    const auto at = std::search(bytes.begin(), bytes.end(), name.begin(), name.end());
    ASSERT_NE(at, bytes.end());
    *(at - 8) = 99; // the handle stands before the name's length
    const std::optional<Frame> read = decoded(bytes);
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->staleObject);
}

TEST_F(Wire, EveryTruncationAndAnyTrailingByteIsMalformed) {
    std::vector<char> bytes = encoded(full());
    const std::span<const char> body = std::span<const char>(bytes).subspan(4);
    for (std::size_t size = 0; size < body.size(); ++size)
        EXPECT_FALSE(decode(body.first(size), objects)) << size;
    bytes.push_back(0);
    EXPECT_FALSE(decode(std::span<const char>(bytes).subspan(4), objects));
}

TEST_F(Wire, LengthsOutOfBoundsAreNone) {
    for (const quint32 length : {0U, 20U, largestBody + 1, 0xFFFFFFFFU}) {
        char bytes[4];
        std::memcpy(bytes, &length, sizeof bytes);
        EXPECT_FALSE(bodyLength(bytes)) << length;
    }
}

TEST_F(Wire, WhatIsTooLargeLeavesTheBytesAlone) {
    std::vector<char> bytes = encoded(full());
    const std::vector<char> before = bytes;
    const QString large(static_cast<qsizetype>(largestBody / 2), u'x');
    const ObjectPtr stranger = std::make_shared<support::FakeObject>("Plain");
    EXPECT_THROW(encode(bytes, {.kind = FrameKind::Put, .values = {large}}, objects), Failure);
    EXPECT_THROW(encode(bytes, {.kind = FrameKind::Put, .values = ValueList(mostValues + 1)}, objects), Failure);
    EXPECT_THROW(encode(bytes, {.kind = FrameKind::Put, .values = {stranger}}, objects), Failure);
    EXPECT_EQ(bytes, before);
}

/// Bytes flipped, cut out, doubled or made up: whatever still reads as a frame is written and read as the same one.
class WireFuzz : public Wire, public testing::WithParamInterface<unsigned> {
  protected:
    void mutate(std::vector<char> &body) {
        const auto place = [&](std::size_t size) { return static_cast<std::ptrdiff_t>(m_random() % size); };
        for (auto count = m_random() % 4 + 1; count > 0 && !body.empty(); --count) {
            const auto at = body.begin() + place(body.size());
            switch (m_random() % 5) {
            case 0:
                *at = static_cast<char>(m_random());
                break;
            case 1:
                *at = static_cast<char>(*at ^ (1 << m_random() % 8));
                break;
            case 2:
                body.erase(at, at + place(static_cast<std::size_t>(body.end() - at) + 1));
                break;
            case 3: {
                const std::vector<char> copy(at, at + place(static_cast<std::size_t>(body.end() - at) + 1));
                body.insert(body.begin() + place(body.size()), copy.begin(), copy.end());
                break;
            }
            default:
                body.insert(at, static_cast<char>(0xFF));
            }
        }
    }

    std::mt19937 m_random{GetParam()};
};

TEST_P(WireFuzz, NothingThatComesInBreaksTheReader) {
    const std::vector<char> original = encoded(full());
    int stillFrames = 0;
    for (int round = 0; round < 4000; ++round) {
        std::vector<char> body(original.begin() + 4, original.end());
        mutate(body);
        const std::optional<Frame> read = decode(body, objects);
        if (!read || read->staleObject)
            continue;
        ++stillFrames;
        const std::vector<char> again = encoded(*read);
        const std::optional<Frame> reread = decoded(again);
        ASSERT_TRUE(reread);
        EXPECT_EQ(encoded(*reread), again);
    }
    EXPECT_GT(stillFrames, 100) << "the mutations are too wild to test anything";
}

INSTANTIATE_TEST_SUITE_P(Seeds, WireFuzz, testing::Range(1U, 9U));

} // namespace

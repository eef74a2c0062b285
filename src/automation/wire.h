/// The frames that cross the socket, and their form in bytes.
///
/// A frame is its length in bytes (32 bits, without itself) and a body. All bodies have one layout: kind (8 bits),
/// call, target and number (32 bits each), a text, a count (32 bits) and so many values. A text is a count of UTF-16
/// units and the units; a value is a tag and what the tag calls for; an array is a count (32 bits) and so many values.
/// A reference to an object is its handle, the name of its type, a count (32 bits) and so many members with their
/// values, none of them an object or an array: what is constant about it. Both ends run on one machine, so numbers are
/// in its own order.
#pragma once

#include "automation/object.h"

#include <span>

namespace automation::wire {

/// Changes whenever the layout or the meaning of a frame does; the two ends must agree.
constexpr qint32 protocolVersion = 4;

/// The largest body. A longer frame ends the connection.
constexpr quint32 largestBody = 64U << 20U;

/// The most values in a body, those inside of arrays included.
constexpr qsizetype mostValues = 1 << 16;

/// How deep arrays lie in arrays at most.
constexpr int deepestArray = 16;

/// The number of a host object on one connection, never 0.
using Handle = quint32;

/// What a frame asks or answers, and which fields it uses. Part of the format: do not renumber.
enum class FrameKind : quint8 {
    Hello = 1,       ///< number: protocol version; answered with the root object
    Get = 2,         ///< target: handle, text: member
    Put = 3,         ///< target: handle, text: member, one value
    Call = 4,        ///< target: handle, text: member, values: arguments
    Connect = 5,     ///< target: handle, text: event, number: the subscription's number, chosen by the client
    Event = 6,       ///< target: subscription, values: arguments; answered with the changed ones, each after its place
    Disconnect = 7,  ///< target: subscription; not answered
    Release = 8,     ///< values: handle and count of references given up, in turns; not answered
    Ping = 9,        ///< answered with Pong at once, whatever else goes on
    Pong = 10,       ///< not answered
    Answer = 11,     ///< call: what it answers, values: the result
    Refusal = 12,    ///< call: what it answers, number and text: the failure
    PutThrough = 13, ///< as Put, of the object at the end of a path; values: the path, the value
    TryPut = 14,     ///< the same; not answered
    Ask = 15,        ///< target: handle, values: paths, each ending in a question; answered with an array for each:
                     ///< the value, or the number and the text of the failure
    Farewell = 16,   ///< number and text: why the sender ends the connection; not answered
};

struct Frame {
    FrameKind kind{};
    quint32 call = 0;
    quint32 target = 0;
    qint32 number = 0;
    QString text = {};
    ValueList values = {};
    /// An argument named a handle that is no longer held; Nothing stands in its place.
    bool staleObject = false;
};

/// How object references cross on one connection.
class ObjectTable {
  public:
    virtual ~ObjectTable() = default;
    struct Reference {
        Handle handle;
        QString typeName;
        std::vector<Constant> constants = {};
    };
    /// The reference that stands for an object, which counts as given out once more. Fails with 13 for an object that
    /// can't cross.
    virtual Reference give(const ObjectPtr &object) = 0;
    /// The object that a reference stands for; null for a handle that is not held.
    virtual ObjectPtr take(const Reference &reference) = 0;
};

/// A path as a value: an array of its questions, each an array of the member and the arguments.
Value packed(const Path &path);

/// The path that `packed` made a value of. Nothing where it is malformed, or has more steps than any use.
std::optional<Path> unpacked(const Value &value);

/// Appends a frame to the bytes. Fails with 7 when it would be too long or have too many values, 5 for arrays nested
/// too deep, or as `ObjectTable::give` does; the bytes are then as they were.
void encode(std::vector<char> &bytes, const Frame &frame, ObjectTable &objects);

/// The length of the body that begins after the four bytes, or nothing when no frame has this length.
std::optional<quint32> bodyLength(std::span<const char, 4> bytes);

/// Reads a body; nothing when it is malformed. No input has any other effect than on the object table.
std::optional<Frame> decode(std::span<const char> body, ObjectTable &objects);

} // namespace automation::wire

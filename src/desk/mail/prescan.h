/// What has to be known of a message's bytes before the MIME library may see them.
#pragma once

#include <QByteArray>

namespace desk {

/// A message made ready for parsing. `bytes` is the message itself wherever nothing had to be changed.
struct Prescan {
    ///
    /// Header fields are cut that are longer than any list of people, and what a header has beyond several such.
    QByteArray bytes;
    /// Whether there is a header at all. Without one, all of `bytes` is text.
    bool hasHeader = false;
    /// From where on the message is too costly to read: a handful of bytes makes a part or a header field, and each of
    /// them costs the library half a kilobyte and a look at every open multipart. The length of `bytes` for any message
    /// that was not made to do harm.
    qsizetype affordable = 0;
    /// The first line inside the header block that is no header field, -1 when there is none. When a message turns out
    /// to be empty, its text began there, without the empty line that should divide it from the header.
    qsizetype strayLine = -1;
};

/// Looks once through the message. Takes away what senders and mailboxes put in front of a header (empty lines, a
/// "From " line), gives a message whose lines end in CR alone LF instead, and blanks for NUL in headers; in a message
/// whose lines end now in CR LF, now in LF, the end before a boundary becomes that of the boundary.
Prescan prescan(const QByteArray &message);

/// Whether the bytes begin with a header field.
bool beginsWithHeader(QByteArrayView bytes);

} // namespace desk

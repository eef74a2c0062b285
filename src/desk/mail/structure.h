/// Which parts of a message are its body and which are attachments.
#pragma once

#include "desk/mail/gmime.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace desk {

/// One part that holds no other parts, or that is kept closed.
struct Leaf {
    GMimeObject *object; ///< belongs to the parsed message
    QByteArray type;     ///< in lower case, such as "text/plain"
    QByteArray disposition;
    QString name;
    /// A multipart in which no part was found stands for the text that it holds.
    const char *bareText = nullptr;

    [[nodiscard]] bool isText() const { return type == "text/plain" || type == "text/html"; }
    /// The content with its transfer encoding undone, or its first `most` bytes. Of a multipart kept closed, its
    /// source.
    [[nodiscard]] QByteArray content(qsizetype most = std::numeric_limits<qsizetype>::max()) const;
    /// A parameter of the content type; empty when there is none.
    [[nodiscard]] QByteArray parameter(const char *name) const;
};

/// A tree of parts, which refer to the bytes that they were read from.
struct Parts {
    std::unique_ptr<BorrowedBytes> bytes;
    /// None when the bytes hold nothing that could be a header.
    GRef<GMimeObject> root;
};

/// The parts read from the first `length` bytes. REQUIRES: the bytes stay where they are for as long as the parts live.
Parts parseParts(const QByteArray &bytes, qsizetype length);

/// Parts that were read a second time.
struct Recovered {
    std::unique_ptr<QByteArray> bytes;
    Parts parts;
};

/// A message laid out. The two bodies list the same part where it serves both.
struct Layout {
    std::vector<Leaf> text;
    std::vector<Leaf> html;
    std::vector<Leaf> attachments;
    /// The source of the parts beyond the largest number that is read.
    QByteArray unread;
    /// Parts found in a multipart whose header had lost the boundary. Leaves refer to them.
    std::vector<Recovered> recovered;
};

/// Sorts the parts below `root` by what mail programs agree on: a text is body unless it is marked as an attachment, or
/// has a name and is not the first of its multipart; of alternatives the HTML goes to one body and the plain text to
/// the other, and the only one there is to both; in "related" only the first part is body.
Layout layOut(GMimeObject *root);

} // namespace desk

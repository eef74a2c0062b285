/// How long the texts may be that a mail brings into fields, lists and file names. The message as it came keeps all of
/// them.
#pragma once

#include "desk/mail/message.h"

namespace desk {

/// In UTF-16 units, as all lengths here. More than people write, and little enough for a row of a list, a template that
/// names it many times and an answer to an answer.
constexpr qsizetype longestSubject = 1000;
constexpr qsizetype longestName = 255;
/// What the standard allows. A longer one can't be written to, and a part of one would be somebody else's.
constexpr qsizetype longestAddress = 320;
/// Of a list of people as one text: some 1,500 of them.
constexpr qsizetype longestPeople = qsizetype{64} * 1024;
/// The longest line that mail may have, which an identifier does not exceed.
constexpr qsizetype longestIdentifier = 998;
/// Of the identifiers of a thread, as many as programs keep.
constexpr qsizetype mostReferences = 100;

/// Where to cut a text so that no more than `most` units are in front: between characters as people see them, no
/// surrogate pair and no letter with its marks in two. Where a character has no end within reason, between its code
/// points.
qsizetype cutPosition(QStringView text, qsizetype most);

/// The text, or its beginning and "…"; no longer than `most`.
QString bounded(const QString &text, qsizetype most);

/// The name of a file, or its beginning with the extension kept; no longer than `most`.
QString boundedFileName(const QString &name, qsizetype most);

/// The subject for an item. One that is too long keeps its beginning and the first text in braces, "{12}", wherever
/// that stands: programs know by it what an answer belongs to, and many put it at the end. It stays the first one.
QString boundedSubject(const QString &subject);

/// The name and address for an item. An address that is too long to be one becomes part of the name.
Address bounded(const Address &address);

/// The people as one text, "Ann <ann@example.org>; bo@example.org". A list that is too long ends in the number of those
/// left out.
QString peopleText(const QList<Address> &addresses);

/// The identifiers as one text, divided by blanks. Of too many, the first one, which began the thread, and the last
/// ones.
QString threadText(const QStringList &identifiers);

} // namespace desk

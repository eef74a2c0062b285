/// Bytes in a named character set to text.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace desk {

/// The text of `bytes` in the character set of that name, as senders write it: any case, with the wrong punctuation, an
/// old alias, or a name for something slightly smaller than what is used (ISO-8859-1 for windows-1252).
///
/// Where the name is empty, unknown or plain ASCII, the set is guessed: ISO-2022-JP by its escapes, UTF-8 where the
/// bytes are valid in it, else `fallback`, else windows-1252. A byte that has no meaning where it stands becomes the
/// character that it is in windows-1252, so that no byte disappears. A byte-order mark is dropped; the result holds no
/// NUL and no half of a surrogate pair (they become U+FFFD).
QString decodeText(QByteArrayView bytes, QByteArrayView charset, QByteArrayView fallback = {});

/// Whether the bytes are well-formed UTF-8.
bool isUtf8(QByteArrayView bytes);

} // namespace desk

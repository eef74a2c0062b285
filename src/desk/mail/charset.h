/// Bytes in a named character set to text.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace desk {

class CharsetHints;

/// The text of `bytes` in the character set of that name, as senders write it: any case, with the wrong punctuation, an
/// old alias, or a name for something slightly smaller than what is used (ISO-8859-1 for windows-1252).
///
/// Where the name is empty, unknown or plain ASCII, or the bytes can't be in that set, the set is guessed (see
/// guessCharset). A few bytes without meaning do not make a set the wrong one: each becomes the character that it is in
/// windows-1252, so that no byte disappears. A byte-order mark is dropped; the result holds no NUL and no half of a
/// surrogate pair (they become U+FFFD).
QString decodeText(QByteArrayView bytes, QByteArrayView charset, const CharsetHints &hints);
/// The same where nothing else is known.
QString decodeText(QByteArrayView bytes, QByteArrayView charset);

/// Whether the bytes are well-formed UTF-8.
bool isUtf8(QByteArrayView bytes);

/// Whether no byte is beyond ASCII.
bool isAscii(QByteArrayView bytes);

} // namespace desk

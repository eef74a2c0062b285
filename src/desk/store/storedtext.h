/// Texts and values as the database holds them.
#pragma once

#include "platform/value/value.h"

#include <QVariant>

namespace desk {

/// The database keeps texts as UTF-8 and would bend what UTF-8 cannot hold: halves of surrogate pairs (a long text cut
/// into pieces leaves them), U+FFFE, U+FFFF and a leading byte order mark. Such a text is kept as a blob of UTF-16,
/// lowest byte first. Part of the format of the file, do not change.
QVariant storedText(const QString &text);
QString textOf(const QVariant &stored);

/// What texts are compared by: folded without regard to case; past 200 characters the first 100 and a SHA-256 of the
/// folded text, so that an index entry stays small and equality stays exact. Part of the format of the file: folding
/// follows the Unicode tables of the library.
QString foldedKey(const QString &text);
/// The length of a key that stands for a longer text.
constexpr int shortenedKeyLength = 165;
/// The folded text, whole.
QString foldedText(const QString &text);

/// The key of a value: that of the text that writes it. Numbers in their shortest exact form, booleans "true" and
/// "false", dates as "2026-11-22 09:30:00"; Empty, Null, Nothing and the zero date are the empty text.
QString keyOf(const Value &value);

} // namespace desk

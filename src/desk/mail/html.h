/// Between HTML and plain text.
#pragma once

#include <QString>

namespace desk {

/// What a reader sees of a page, as plain text with lines ending in CR LF: blocks on lines of their own, runs of blanks
/// as one, entities resolved; scripts, styles and comments left out. Takes any text, and time in line with its length.
QString textFromHtml(const QString &html);

/// A plain text as a piece of HTML that looks the same: escaped, line breaks as <br>, runs of blanks kept.
QString htmlFromText(const QString &text);

/// What stands between a page's body tags; the whole text when it has no body tag.
QString bodyOfPage(const QString &html);

} // namespace desk

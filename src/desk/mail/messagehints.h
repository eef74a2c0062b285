/// What a message tells about the character sets of its texts.
#pragma once

#include "desk/mail/charsetguess.h"
#include "desk/mail/structure.h"

namespace desk {

/// The hints of a message: the sets and languages that its header, its parts and its pages name, and the texts for
/// which they name none.
CharsetHints hintsOf(GMimeObject *root, const Layout &layout);

/// The set that a text's part names or, where that says nothing and `bytes`, the text, are no UTF-8, the page in it. A
/// name that no text in these bytes can bear is passed over, and so is UTF-7 where only the page names it: a page could
/// hide its markup from others that way.
QByteArray charsetOf(const Leaf &leaf, QByteArrayView bytes);

/// The part's name. 8-bit characters that nobody said the set of are read like those of the message's header.
QString nameOf(const Leaf &leaf, const CharsetHints &hints);

} // namespace desk

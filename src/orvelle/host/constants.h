/// The host's numbers by their meaning.
#pragma once

#include <QtGlobal>

namespace host {

namespace itemtype {
constexpr qint32 mail = 0;
constexpr qint32 post = 6;
} // namespace itemtype

/// Default folders; a new folder takes the kind of items of one of them.
namespace defaultfolder {
constexpr qint32 deletedItems = 3;
constexpr qint32 outbox = 4;
constexpr qint32 sentItems = 5;
constexpr qint32 inbox = 6;
constexpr qint32 calendar = 9;
constexpr qint32 contacts = 10;
constexpr qint32 drafts = 16;
} // namespace defaultfolder

/// Types of custom properties.
namespace usertype {
constexpr qint32 text = 1;
constexpr qint32 number = 3;
constexpr qint32 dateTime = 5;
constexpr qint32 yesNo = 6;
} // namespace usertype

namespace bodyformat {
constexpr qint32 html = 2;
constexpr qint32 richText = 3;
} // namespace bodyformat

namespace closing {
constexpr qint32 save = 0;
constexpr qint32 discard = 1;
} // namespace closing

namespace sensitivity {
constexpr qint32 personal = 1;
}

namespace flagstatus {
constexpr qint32 complete = 2;
}

namespace attachmenttype {
constexpr qint32 byValue = 1;
constexpr qint32 embeddedItem = 5;
constexpr qint32 oleObject = 6;
} // namespace attachmenttype

/// Kinds of files that an item is saved as.
namespace filetype {
constexpr qint32 message = 3;
}

} // namespace host

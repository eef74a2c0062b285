/// Texts cut out of pages, and texts for fields.
#pragma once

#include "platform/value/value.h"

#include <QString>

/// What stands inside the body tags: empty for a text without a body, all of it for a body that doesn't end.
QString fncGetBody(const QString &strHTML);
/// The default ticket body, with its field "[BODY]".
QString fncNewTicketHTML();
/// The first web link by the order of the known prefixes, up to the next blank; empty where there is none.
QString fncFirstLink(const QString &strText);
/// Null and Empty give the empty text; a text that begins with "-" or "+" gets an apostrophe in front.
QString fncNullSafeText(const Value &value);

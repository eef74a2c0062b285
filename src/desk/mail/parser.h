/// From the bytes of a message to its fields.
#pragma once

#include "desk/mail/message.h"

namespace desk {

/// Reads a message. Any bytes are a message: it never fails, and what is broken, unknown or missing costs only itself.
/// - A part in a character set that is unknown or wrong is read by the best guess; no byte of it is dropped silently.
/// - What should be a message and is none (no header at all) is a message whose text is those bytes.
/// - Of the parts, those a reader is meant to see in one piece make up the text and the HTML body, in their order; all
///   others are attachments. Images inside the text are attachments with isInline set.
/// - A text beside HTML that has no HTML form of its own (a mailing list's footer) is put into the HTML body too.
/// - Parts nested deeper than 100 levels, or beyond the 2000th, are kept unread as attachments.
/// - Of a body, 16 MB are read, and a line behind them says so. The bytes have the rest.
Message parseMessage(const QByteArray &bytes);

/// The subject of a message, of which no more than the header is read.
QString subjectOf(const QByteArray &message);

} // namespace desk

/// From a message's fields to its bytes.
#pragma once

#include "desk/mail/message.h"

namespace desk {

/// Writes a message that any mail program reads: 7-bit lines ending in CR LF, UTF-8 inside.
/// - A header's value cannot start another header: line breaks and control characters in it become blanks.
/// - A missing date is taken from the clock; a missing identifier is made up. All else that is missing stays away.
/// - Reading the result gives the same fields, as long as they keep what message.h promises.
/// - "Bcc" is written like the rest: whoever hands the message to others takes the list out first.
/// - An embedded message is kept byte for byte (line ends aside where it travels unencoded).
/// \param furtherHeaders  whole header lines, each with its CR LF, that stand behind those of the message.
QByteArray composeMessage(const Message &message, const QByteArray &furtherHeaders = {});

/// A new, unique message identifier without angle brackets, in the domain of `address` ("localhost" where it has none).
QString newMessageId(const QString &address);

} // namespace desk

/// The parts of a message being written.
#pragma once

#include "desk/mail/message.h"

namespace desk {

/// A part as it stands in the message: its header lines, each with its end, and its encoded content.
struct BodyPart {
    QByteArray headers;
    QByteArray content;
};

/// A text in the encoding that suits it: as it is where that is safe, quoted-printable where most of it can be read so,
/// else base64.
BodyPart textPart(const QByteArray &subtype, const QString &text);

/// An attachment with its name. An embedded message travels as it is, as the standard demands, with its lines ended by
/// CR LF; only one that could not survive this is sent in base64.
BodyPart attachmentPart(const Attachment &attachment);

/// The parts in one, divided by a line that occurs in none of them.
BodyPart multipart(const QByteArray &subtype, const QList<BodyPart> &parts);

} // namespace desk

/// Address lists of headers.
#pragma once

#include "desk/mail/message.h"

#include <QByteArrayView>

namespace desk {

/// The mailboxes of a header's value, groups opened up. Takes any bytes: what is no address list gives one address made
/// of the text, with what looks like an address picked out of it. An empty group gives its name.
QList<Address> decodeAddresses(QByteArrayView raw, QByteArrayView fallback = {});

/// The list as a header's value, folded. A name without an address becomes an empty group of that name.
QByteArray encodeAddresses(const QList<Address> &addresses);

} // namespace desk

/// Address lists of headers.
#pragma once

#include "desk/mail/message.h"

#include <QByteArrayView>

namespace desk {

class CharsetHints;

/// The mailboxes of a header's value, groups opened up. Takes any bytes: a missing bracket or quote costs only its own
/// entry, an entry without an address is a name, and what looks like an address inside a name is taken for one. An
/// empty group gives its name. Unlike the MIME library's reader, this one takes addresses that are in use although they
/// break the rules, such as those with two dots in a row, and hostile nesting costs it nothing.
QList<Address> decodeAddresses(QByteArrayView raw, const CharsetHints &hints);

/// The list as a header's value, folded. A name without an address becomes an empty group of that name.
QByteArray encodeAddresses(const QList<Address> &addresses);

/// Whether any mail could go to the address: a part before the '@', and a domain or a number in brackets behind it.
bool isReachable(const QString &address);
/// The address with its domain as mail systems know it ("xn--..."); as it is where the domain can't be written so.
QString withPlainDomain(const QString &address);

} // namespace desk

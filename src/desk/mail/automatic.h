/// Mail that no person wrote: how it is told from ordinary mail, and how mail that a program sends says that it is
/// such.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace desk {

/// What kind of automatic mail a message is. The numbers are kept in stores: do not change them.
enum class AutomaticKind : int {
    None = 0,        ///< ordinary mail
    Bounce = 1,      ///< a mail could not be delivered, or not yet
    Receipt = 2,     ///< a mail was read or deleted
    OutOfOffice = 3, ///< an answer that a program gave to a mail
    List = 4,        ///< mailing lists, newsletters, mail in bulk
    OwnMail = 5,     ///< what was sent from here comes back
    Other = 6        ///< anything else that says of itself that a program sent it
};

/// For people: "bounce", "out of office" and so on; empty for None.
QString nameOf(AutomaticKind kind);

/// What a mailbox knows its own mail by.
struct OwnMail {
    /// Addresses that the mailbox is reached at; case means nothing.
    QStringList addresses;
    /// The loop marks that its programs' mail may bear.
    QStringList marks;
};

/// Judges a message by its header; what its subject and its text say counts for nothing, for people write such words
/// too, and forward such mail. Any bytes are a message. Looks at no more than the first 256 KB.
///
/// Automatic is what bears one of these:
/// - a loop mark of one's own, or an address of one's own as its sender;
/// - an empty return path, the type multipart/report or message/delivery-status, X-Failed-Recipients, or a mail server
///   as its sender ("postmaster" only where no mail program of a person names itself);
/// - Auto-Submitted with anything but "no", one of the fields by which older programs mark answers (X-Autoreply and the
///   like), X-Auto-Response-Suppress with "All" or "AutoReply";
/// - a List-... field, or Precedence with "bulk", "junk", "list" or "auto_reply". A list whose address is one's own is
/// a
///   way in, and its marks count for nothing.
AutomaticKind automaticKind(const QByteArray &message, const OwnMail &own);

/// The header lines, each with its CR LF, of a mail that a program sends without a person.
/// \param answers  whether it answers a mail. Mail in bulk is what it then calls itself too, for the oldest answering
///     programs know no other reason to stay silent; a mail that begins a conversation would only reach people later.
/// \param mark  by which the mailbox knows the mail when it comes back.
QByteArray automaticHeaders(bool answers, const QString &mark);

} // namespace desk

/// The rules that keep programs from writing to machines: what automatic mail does to its sender and to its place, and
/// whether a mail that a program sends may go out.
///
/// A program's mail is one that is sent without a window. It must not answer a machine, for machines answer back, and
/// each answer would bring the next. What may not go out is kept, with the reason on it.
#pragma once

#include "desk/content/folderpath.h"
#include "desk/content/itemcontent.h"
#include "desk/mail/automatic.h"
#include "desk/mail/message.h"

namespace desk {

class Mailboxes;

/// Custom properties by which the rules are seen.
namespace mailproperty {
/// On automatic mail that came in: its kind.
inline const QString automatic = QStringLiteral("Automatic mail");
/// On a program's mail.
inline const QString byProgram = QStringLiteral("Sent automatically");
/// On a mail that answers an automatic one: the kind of that.
inline const QString answersAutomatic = QStringLiteral("Answers automatic mail");
/// On a program's mail that may not go out.
inline const QString notSent = QStringLiteral("Not sent because");
} // namespace mailproperty

/// What the session's mailbox knows its own mail by.
OwnMail ownMail(Mailboxes &mailboxes);
/// The mark on mail that programs send from here, by which it is known when it comes back.
QString loopMark(Mailboxes &mailboxes);

/// Remembers for its sender what kind a message is that comes in. All who share the public folders remember together,
/// for any of them may answer; whoever can't write there remembers alone.
void rememberSender(Mailboxes &mailboxes, const QString &address, AutomaticKind kind);

/// Where automatic mail of a kind goes that is not to reach the Inbox; made where it is missing.
FolderPlace folderFor(Mailboxes &mailboxes, AutomaticKind kind);

/// Makes a submitted mail a program's, or a person's.
void setByProgram(ItemContent &item, bool isByProgram);
[[nodiscard]] bool isByProgram(ItemContent &item);

/// Makes a mail the answer to another one that came in.
void setAnswered(ItemContent &item, ItemContent &answered);

/// Why a program's mail may not go out; empty where it may, and then it is counted for its recipients. A mail to
/// several goes to all of them or to none.
QString reasonNotToSend(Mailboxes &mailboxes, ItemContent &item, const Message &message);

/// Moves a submitted mail from the Outbox into the mailbox's folder "Not sent", with the reason on it. It is a draft
/// there, which a person may open and send. No crash loses it: what is still in the Outbox is judged anew.
void keepUnsent(Mailboxes &mailboxes, const ItemRecord &item, const QString &reason);

} // namespace desk

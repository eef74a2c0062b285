#include "desk/mail/automatic.h"

#include "desk/mail/charsetguess.h"
#include "desk/mail/headers.h"
#include "desk/mail/prescan.h"
#include "desk/mail/structure.h"

namespace desk {
namespace {

constexpr qsizetype mostLookedAt = qsizetype{256} * 1024;
const char *const markName = "X-Desk-Loop";

/// The first bytes of a message up to the empty line behind its header.
QByteArray headerOf(const QByteArray &message) {
    const Prescan scan = prescan(message.first(std::min(message.size(), mostLookedAt)));
    if (!scan.hasHeader)
        return {};
    const QByteArray bytes = scan.bytes.first(scan.affordable);
    const qsizetype plain = bytes.indexOf("\n\n");
    const qsizetype withReturn = bytes.indexOf("\n\r\n");
    const qsizetype end = plain < 0 || (withReturn >= 0 && withReturn < plain) ? withReturn : plain;
    return (end < 0 ? bytes : bytes.first(end + 1)) + '\n';
}

/// The value in lower case, without its comments and what stands in a row behind a ';'.
QString wordOf(const QString &value) {
    QString word;
    int depth = 0;
    for (const QChar letter : value) {
        if (letter == u';' && depth == 0)
            break;
        if (letter == u'(')
            ++depth;
        else if (letter == u')' && depth > 0)
            --depth;
        else if (depth == 0 && letter != u'"')
            word += letter;
    }
    return word.simplified().toLower();
}

bool saysNo(const QString &word) {
    return word.isEmpty() || word == u"no" || word == u"false" || word == u"0" || word == u"none";
}

/// The signs of one message.
class Signs {
  public:
    Signs(GMimeObject *root, const OwnMail &own) : m_headers(root, m_hints), m_own(own), m_sender(addressIn("From")) {}

    /// Which sign comes first matters for the kind alone.
    [[nodiscard]] AutomaticKind kind() const {
        if (isMarked())
            return AutomaticKind::OwnMail;
        if (const AutomaticKind report = reportKind(); report != AutomaticKind::None)
            return report;
        if (isOwn(m_sender))
            return AutomaticKind::OwnMail;
        if (isAnswer())
            return AutomaticKind::OutOfOffice;
        if (isList())
            return AutomaticKind::List;
        if (!saysNo(submitted()) || suppressesAnswers() || m_headers.has("X-Cron-Env"))
            return AutomaticKind::Other;
        // The way back is closed for those that must not be answered; most of them are bounces.
        return hasEmptyPath() ? AutomaticKind::Bounce : AutomaticKind::None;
    }

  private:
    [[nodiscard]] QString word(const char *name) const { return wordOf(m_headers.text(name)); }

    /// Mail servers sign with a name that is no address, too.
    [[nodiscard]] QString addressIn(const char *name) const {
        const Address address = m_headers.addresses(name).value(0);
        return (address.address.isEmpty() ? address.name : address.address).toLower();
    }

    [[nodiscard]] bool isOwn(const QString &address) const {
        return !address.isEmpty() && m_own.addresses.contains(address, Qt::CaseInsensitive);
    }

    [[nodiscard]] bool isMarked() const {
        const QString mark = m_headers.text(markName).trimmed();
        return !mark.isEmpty() && m_own.marks.contains(mark, Qt::CaseInsensitive);
    }

    /// Bounces and receipts.
    [[nodiscard]] AutomaticKind reportKind() const {
        const QString type = m_headers.text("Content-Type").toLower();
        const QString name = type.section(u';', 0, 0).trimmed();
        const bool isReport = name == u"multipart/report";
        if (isReport && type.contains(u"disposition-notification"))
            return AutomaticKind::Receipt;
        if (isReport && type.contains(u"feedback-report"))
            return AutomaticKind::Other;
        const bool isBounce =
            isReport || name == u"message/delivery-status" || m_headers.has("X-Failed-Recipients") || isMailServer();
        return isBounce ? AutomaticKind::Bounce : AutomaticKind::None;
    }

    [[nodiscard]] bool isMailServer() const {
        static const QStringList servers = {"mailer-daemon", "mailerdaemon", "mail-daemon"};
        for (const QString &address : {m_sender, addressIn("Return-Path")}) {
            if (servers.contains(address.section(u'@', 0, 0)))
                return true;
        }
        const bool isPerson = m_headers.has("User-Agent") || m_headers.has("X-Mailer");
        return m_sender.section(u'@', 0, 0) == u"postmaster" && !isPerson;
    }

    [[nodiscard]] QString submitted() const { return word("Auto-Submitted"); }
    [[nodiscard]] QString precedence() const {
        for (const char *name : {"Precedence", "X-Precedence", "Preference"}) {
            if (const QString value = word(name); !value.isEmpty())
                return value;
        }
        return {};
    }

    [[nodiscard]] bool isAnswer() const {
        if (submitted().startsWith(u"auto-replied") || precedence() == u"auto_reply")
            return true;
        static constexpr std::array<const char *, 12> marks = {
            "X-Autoreply",     "X-Auto-Reply",        "X-Autorespond",    "X-Auto-Respond",
            "X-Autoresponder", "X-Auto-Responder",    "X-Mail-Autoreply", "X-Autoreply-From",
            "X-Vacation",      "X-Amazon-Auto-Reply", "X-Autogenerated",  "X-FC-MachineGenerated"};
        if (std::any_of(marks.begin(), marks.end(), [&](const char *name) { return !saysNo(word(name)); }))
            return true;
        if (word("Delivered-To") == u"autoresponder" ||
            m_headers.text("X-POST-MessageClass").contains(u"autoresponder", Qt::CaseInsensitive))
            return true;
        // Some servers call their notes generated although they answer a mail.
        const bool isByRule = word("X-MS-Exchange-Generated-Message-Source").contains(u"rules agent");
        return isByRule || (submitted().startsWith(u"auto-generated") && m_headers.has("In-Reply-To"));
    }

    [[nodiscard]] bool isList() const {
        const QString value = precedence();
        if (value == u"bulk" || value == u"junk")
            return true;
        static constexpr std::array<const char *, 7> fields = {
            "List-Id", "List-Post", "List-Help", "List-Unsubscribe", "List-Subscribe", "List-Owner", "List-Archive"};
        const bool hasField =
            std::any_of(fields.begin(), fields.end(), [&](const char *name) { return m_headers.has(name); });
        return (hasField || value == u"list") && !isOwnList();
    }

    /// Whether the list is the address by which people reach this mailbox.
    [[nodiscard]] bool isOwnList() const {
        const QString post = m_headers.text("List-Post").toLower();
        const QString id = m_headers.text("List-Id").section(u'<', -1).section(u'>', 0, 0).trimmed().toLower();
        return std::any_of(m_own.addresses.begin(), m_own.addresses.end(), [&](const QString &own) {
            const QString address = own.toLower();
            return post.contains("<mailto:" + address + ">") || id == QString(address).replace(u'@', u'.');
        });
    }

    /// Out of office notes and receipts are no answers of ours: who refuses these alone may be answered.
    [[nodiscard]] bool suppressesAnswers() const {
        const QStringList words = word("X-Auto-Response-Suppress").split(u',');
        return std::any_of(words.begin(), words.end(), [](const QString &each) {
            const QString kind = each.trimmed();
            return kind == u"all" || kind == u"autoreply";
        });
    }

    [[nodiscard]] bool hasEmptyPath() const {
        return m_headers.text("Return-Path").remove(u' ').remove(u'\t') == u"<>";
    }

    /// The signs are plain words, whatever set the message is in.
    CharsetHints m_hints;
    Headers m_headers;
    const OwnMail &m_own;
    QString m_sender;
};

} // namespace

QString nameOf(AutomaticKind kind) {
    switch (kind) {
    case AutomaticKind::Bounce:
        return QStringLiteral("bounce");
    case AutomaticKind::Receipt:
        return QStringLiteral("receipt");
    case AutomaticKind::OutOfOffice:
        return QStringLiteral("out of office");
    case AutomaticKind::List:
        return QStringLiteral("list");
    case AutomaticKind::OwnMail:
        return QStringLiteral("own mail");
    case AutomaticKind::Other:
        return QStringLiteral("other");
    case AutomaticKind::None:
        break;
    }
    return {};
}

AutomaticKind automaticKind(const QByteArray &message, const OwnMail &own) {
    const QByteArray header = headerOf(message);
    const Parts parts = header.isEmpty() ? Parts() : parseParts(header, header.size());
    return parts.root ? Signs(parts.root.get(), own).kind() : AutomaticKind::None;
}

QByteArray automaticHeaders(bool answers, const QString &mark) {
    const QByteArray precedence = answers ? "Precedence: bulk\r\n" : "";
    return "Auto-Submitted: auto-generated\r\nX-Auto-Response-Suppress: All\r\n" + precedence + markName + ": " +
           cleanIdentifier(mark).toUtf8() + "\r\n";
}

} // namespace desk

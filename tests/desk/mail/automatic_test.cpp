// Which mail is automatic: real-looking machines' mail on one side, people's mail of every make on the other.
#include "desk/mail/automatic.h"

#include "support/files.h"

#include <gtest/gtest.h>

#include <QDirIterator>
#include <QRandomGenerator>

#include <map>

using namespace desk;

namespace {

constexpr auto None = AutomaticKind::None;
constexpr auto Bounce = AutomaticKind::Bounce;
constexpr auto Receipt = AutomaticKind::Receipt;
constexpr auto OutOfOffice = AutomaticKind::OutOfOffice;
constexpr auto List = AutomaticKind::List;
constexpr auto Own = AutomaticKind::OwnMail;
constexpr auto Other = AutomaticKind::Other;

const OwnMail own{{"helpdesk@orvelle.example", "Support@Orvelle.example"}, {"0123456789abcdef"}};

struct Case {
    const char *name;
    AutomaticKind kind;
    /// Lines of the header parted by LF, without From where they begin with another.
    QByteArray header;
    QByteArray body = "Text";
};

QByteArray messageOf(const Case &each) {
    QByteArray header = each.header;
    if (!header.contains("From:") && !header.contains("from:"))
        header += "\nFrom: Cal Caller <cal@example.org>";
    return QByteArray(header + "\nTo: helpdesk@orvelle.example\nSubject: Hello\n\n" + each.body + "\n")
        .replace("\n", "\r\n");
}

const std::vector<Case> automatic = {
    {"a server's report", Bounce,
     "Return-Path: <>\nFrom: MAILER-DAEMON@mx.example.org (Mail Delivery System)\nAuto-Submitted: auto-replied\n"
     "MIME-Version: 1.0\nContent-Type: multipart/report; report-type=delivery-status;\n\tboundary=\"B/1\"",
     "--B/1\nContent-Type: message/delivery-status\n\nAction: failed\n--B/1--"},
    {"a report without the path", Bounce,
     "From: postmaster@corp.example\nContent-Type: Multipart/Report; Report-Type=\"delivery-status\"; boundary=b"},
    {"a report folded before its type", Bounce, "Content-Type:\n multipart/report;\n boundary=b"},
    {"a server without a report", Bounce,
     "Return-Path: <>\nFrom: MAILER-DAEMON@mail.example.org\nSubject: failure notice",
     "Hi. This is the mail program at mail.example.org."},
    {"the same with its path lost", Bounce, "From: MAILER-DAEMON@mail.example.org"},
    {"a server by name alone", Bounce, "From: Mailer-Daemon"},
    {"a server on the way back", Bounce, "Return-Path: <MAILER-DAEMON@x.example>\nFrom: Mail System <noc@x.example>"},
    {"a corporate server's report", Bounce,
     "From: Microsoft Outlook <postmaster@corp.example>\nContent-Language: en-US\nX-MS-Has-Attach: yes\n"
     "Content-Type: multipart/report; report-type=delivery-status; boundary=b\nX-MS-Exchange-Message-Is-Ndr:\n"
     "Auto-Submitted: auto-replied"},
    {"failed recipients", Bounce, "X-Failed-Recipients: cal@example.org\nFrom: Mail System <x@mx.example>"},
    {"a bare status", Bounce, "Content-Type: message/delivery-status"},
    {"an empty path and nothing else", Bounce, "Return-Path: <>"},
    {"an empty path with a blank", Bounce, "Return-Path:  < > "},
    {"a delay", Bounce, "Return-path: <>\nFrom: Mail Delivery System <Mailer-Daemon@mx.example>"},
    {"a postmaster", Bounce, "From: postmaster@corp.example"},
    {"a receipt", Receipt,
     "Return-Path: <>\nContent-Type: multipart/report; report-type=disposition-notification; boundary=b"},
    {"a complaint report", Other, "Content-Type: multipart/report; report-type=feedback-report; boundary=b"},
    {"out of office of a corporate server", OutOfOffice,
     "X-Auto-Response-Suppress: All\nAuto-Submitted: auto-generated\nIn-Reply-To: <1@x>\n"
     "X-MS-Exchange-Generated-Message-Source: Mailbox Rules Agent"},
    {"out of office of a sieve", OutOfOffice, "Auto-Submitted: auto-replied (vacation)\nPrecedence: bulk"},
    {"out of office of a web mailer", OutOfOffice, "Precedence: bulk\nX-Autoreply: yes\nAuto-Submitted: auto-replied"},
    {"out of office of a group server", OutOfOffice, "Auto-Submitted: auto-replied (zimbra; readonly)"},
    {"out of office of an old program", OutOfOffice, "X-Autorespond: Re: Helpdesk Ticket {1}"},
    {"another old program", OutOfOffice, "Precedence: auto_reply"},
    {"a third", OutOfOffice, "X-Precedence: auto_reply"},
    {"a hosting panel", OutOfOffice, "Delivered-To: Autoresponder\nX-Autoresponder: autoresponse"},
    {"a shop", OutOfOffice, "X-Amazon-Auto-Reply: true"},
    {"a group program", OutOfOffice, "X-POST-MessageClass: 9; Autoresponder"},
    {"upper case", OutOfOffice, "AUTO-SUBMITTED: AUTO-REPLIED"},
    {"a comment first", OutOfOffice, "Auto-Submitted: (on holiday) auto-replied; owner=x"},
    {"a discussion list", List,
     "List-Id: Discussion <discuss.lists.example>\nList-Post: <mailto:discuss@lists.example>\nPrecedence: list"},
    {"a list's own name for it", List, "List-Id: <announce.example.org>"},
    {"an announcement that takes no mail", List, "List-Post: NO\nFrom: news@shop.example"},
    {"a newsletter", List, "List-Unsubscribe: <https://shop.example/u>\nFrom: News <news@shop.example>"},
    {"bulk", List, "Precedence: bulk"},
    {"junk", List, "Precedence: Junk"},
    {"a list of its own with a bulk mail", List, "List-Id: <support.orvelle.example>\nPrecedence: bulk"},
    {"own mail", Own, "X-Desk-Loop: 0123456789ABCDEF\nAuto-Submitted: auto-replied"},
    {"own mail by an own address", Own, "From: Helpdesk <HELPDESK@orvelle.example>"},
    {"own mail by another own address", Own, "From: support@orvelle.example"},
    {"own mail that a person sent on", Own,
     "Resent-From: Cal <cal@example.org>\nX-Desk-Loop: 0123456789abcdef\nFrom: service@elsewhere.example"},
    {"a job's output", Other, "Auto-Submitted: auto-generated\nX-Cron-Env: <SHELL=/bin/sh>\nFrom: root@db1.example"},
    {"an older job's output", Other, "X-Cron-Env: <SHELL=/bin/sh>\nFrom: root@db1.example (Cron Daemon)"},
    {"a monitor", Other, "Auto-Submitted: auto-generated\nFrom: Monitoring <monitor@noc.example>"},
    {"a monitor that wants no answers", Other, "X-Auto-Response-Suppress: DR, All\nFrom: alerts@cloud.example"},
    {"a mail that wants no program's answer", Other, "X-Auto-Response-Suppress: AutoReply"},
    {"a corporate mail that wants none in a list", Other, "X-Auto-Response-Suppress: DR, RN, NRN, OOF, autoreply"},
    {"a calendar's notice", Other, "Auto-Submitted: auto-notified; owner-email=x@example.org"},
    {"a word that nobody knows", Other, "Auto-Submitted: auto-something"},
};

TEST(AutomaticMail, IsToldByHeaderAndStructure) {
    for (const Case &each : automatic)
        EXPECT_EQ(automaticKind(messageOf(each), own), each.kind) << each.name;
}

/// Each is something that people do, and near to what machines do.
const std::vector<Case> ordinary = {
    {"says that it is not automatic", None, "Auto-Submitted: no"},
    {"says so with a comment", None, "Auto-Submitted: no (a person)\nX-Autoreply: no"},
    {"says nothing where it could", None, "Auto-Submitted:\nPrecedence:\nX-Autoreply:\nReturn-Path:"},
    {"comes back to a person", None, "Return-Path: <cal@example.org>"},
    {"comes back through a gateway", None,
     "Return-Path: <bounces+7-cal=example.org@gateway.example>\nSender: bounces@gateway.example"},
    {"of the first class", None, "Precedence: first-class\nX-Precedence: normal"},
    {"a corporate mail that wants no receipts", None, "X-Auto-Response-Suppress: DR, RN, NRN"},
    {"a corporate mail that wants no out of office note", None, "X-Auto-Response-Suppress: OOF"},
    {"asks for a receipt", None, "Disposition-Notification-To: <cal@example.org>\nReturn-Receipt-To: cal@example.org"},
    {"forwards a bounce as it came", None, "Content-Type: multipart/mixed; boundary=b",
     "--b\n\nSee below\n--b\nContent-Type: message/rfc822\n\nReturn-Path: <>\nFrom: MAILER-DAEMON@x\n"
     "Auto-Submitted: auto-replied\nContent-Type: multipart/report; report-type=delivery-status\n\nGone\n--b--"},
    {"quotes a bounce", None, "Subject: Fwd: Undelivered Mail Returned to Sender",
     "> Return-Path: <>\n> Auto-Submitted: auto-replied\n> Precedence: bulk"},
    {"attaches a report alone", None, "Content-Type: message/rfc822",
     "Content-Type: multipart/report\nAuto-Submitted: auto-replied\n\nText"},
    {"writes of holidays", None, "Subject: Out of office: Automatic reply, Abwesenheitsnotiz"},
    {"wrote as a postmaster", None, "From: Pat <postmaster@corp.example>\nUser-Agent: Mailer 102.4"},
    {"wrote from a robot's address", None, "From: Web form <noreply@shop.example>\nReply-To: cal@example.org"},
    {"went through the helpdesk's own group", None,
     "List-Id: <helpdesk.orvelle.example>\nList-Post: <mailto:helpdesk@orvelle.example>\nPrecedence: list\n"
     "List-Unsubscribe: <mailto:leave@groups.example>"},
    {"went through another own group", None, "List-Post: <mailto:SUPPORT@orvelle.example>\nPrecedence: list"},
    {"bears another's loop mark", None, "X-Loop: forwarder@example.org\nX-Desk-Loop: ffff"},
    {"was sent on", None,
     "Resent-From: Bo <bo@example.org>\nResent-To: helpdesk@orvelle.example\nResent-Message-ID: <1@x>"},
    {"names a daemon in passing", None, "From: MAILER-DAEMON fan club <cal@example.org>"},
    {"answers", None, "In-Reply-To: <1@orvelle.example>\nReferences: <1@orvelle.example>"},
    {"an invitation", None, "Content-Type: text/calendar; method=REQUEST; charset=utf-8", "BEGIN:VCALENDAR"},
    {"a report that is none", None, "Content-Type: multipart/reports; boundary=b"},
    {"a signed mail", None, "Content-Type: multipart/signed; protocol=\"application/pgp-signature\"; boundary=b"},
    {"no sender", None, "from: \n"},
};

TEST(AutomaticMail, LeavesPeopleAlone) {
    for (const Case &each : ordinary)
        EXPECT_EQ(automaticKind(messageOf(each), own), None) << each.name;
}

TEST(AutomaticMail, TakesAnyBytes) {
    QByteArray many = "Subject: x\r\n";
    for (int i = 0; i < 20'000; ++i)
        many += "X-Field-" + QByteArray::number(i) + ": y\r\n";
    // What stands behind the end of the header, and behind what is looked at, is no header.
    for (const QByteArray &bytes :
         {QByteArray(), QByteArray("\r\n\r\n"), QByteArray("no header at all"), QByteArray(1000, '\0'),
          QByteArray("Subject: x\r\n\r\nAuto-Submitted: auto-replied\r\n"),
          QByteArray("Subject: x\n\nAuto-Submitted: auto-replied\r\n\r\n"),
          QByteArray("\r\n\r\nAuto-Submitted auto-replied\r\n"), many + "Auto-Submitted: auto-replied\r\n\r\n"})
        EXPECT_EQ(automaticKind(bytes, own), None) << bytes.left(60).toStdString();
    for (const QByteArray &bytes :
         {QByteArray("From x Mon Nov 16 09:00:00 2026\nAuto-Submitted: auto-replied\n\n"),
          QByteArray("\r\nSubject: x\r\nAuto-Submitted: auto-replied\r\n\r\nText"),
          QByteArray("Subject: x\rAuto-Submitted: auto-replied\r\rText"), QByteArray("Auto-Submitted: auto-replied"),
          QByteArray("Subject: =?utf-8?q?=\xff\r\nAuto-Submitted:\r\n\tauto-replied\r\n")})
        EXPECT_EQ(automaticKind(bytes, own), OutOfOffice) << bytes.left(60).toStdString();
}

TEST(AutomaticMail, KnowsWhatItWroteItself) {
    for (const bool answers : {false, true}) {
        const QByteArray header = automaticHeaders(answers, "0123456789abcdef\r\nBcc: x@example.org");
        EXPECT_FALSE(header.contains("\nBcc")) << header.toStdString();
        EXPECT_TRUE(header.contains("Auto-Submitted: auto-generated\r\n"));
        const QByteArray mail = "From: service@example.org\r\n" +
                                QByteArray(answers ? "In-Reply-To: <1@there>\r\n" : "") +
                                automaticHeaders(answers, own.marks.first());
        EXPECT_EQ(automaticKind(mail + "\r\nText", own), Own);
        EXPECT_EQ(automaticKind(mail + "\r\nText", {}), answers ? OutOfOffice : Other) << "at another's";
    }
}

/// What mails of people have in their headers besides, by programs and places of all kinds.
const QByteArrayList makes[] = {
    {"Return-Path: <prvs=1234=cal@example.org>\nDelivered-To: helpdesk@orvelle.example\n",
     "X-Forwarded-To: helpdesk@orvelle.example\nReturn-Path: <SRS0=ab=cd=example.org=cal@forward.example>\n",
     "Received-SPF: pass\nAuthentication-Results: mx; dkim=pass\nReturn-Path: <cal+tag@example.org>\n", ""},
    {"X-Mailer: Desktop Mail 16.0\nThread-Index: AdX=\nX-MS-Has-Attach: yes\nX-MS-TNEF-Correlator:\n",
     "User-Agent: Mozilla/5.0 (X11; Linux x86_64; rv:102.0) Gecko/20100101\n",
     "X-Mailer: Phone Mail (20A380)\nMIME-Version: 1.0 (1.0)\n",
     "X-MS-Exchange-Organization-AuthAs: Internal\nX-Auto-Response-Suppress: DR, OOF\n",
     "X-Priority: 3 (Normal)\nX-MimeOLE: Produced By V6\n", ""},
    {"Subject: Automatic reply from the printer\n", "Subject: =?utf-8?q?Abwesenheitsnotiz_geht_nicht?=\n",
     "Subject: Undeliverable: what does it mean?\n", "Subject: Fwd: newsletter, unsubscribe me\n", "Subject:\n", ""},
    {"Message-ID: <CA+auto-generated@mail.example>\n", "References:\n <bulk@list.example>\n", ""},
    {"Sensitivity: Private\nX-MSMail-Priority: High\n", "X-Spam-Status: No, BAYES_00\nX-Spam-Level:\n",
     "Keywords: list, bulk\nComments: auto-replied, of course\n", "X-Confirm-Reading-To: cal@example.org\n",
     "Autocrypt: addr=cal@example.org; keydata=x\n", "X-List-Administrator: nobody\n"},
    {"X-MS-Exchange-Inbox-Rules-Loop: cal@example.org\n", "X-Original-From: cal@example.org\n",
     "X-Disclaimed: 1\nX-Virus-Scanned: by gateway\nX-Scanned-By: auto\n", ""},
};
const QByteArrayList senders{"From: =?utf-8?b?w4VzYSDDlnN0?= <asa@example.se>\n",
                             "From: info@corp.example\nSender: Ann Other <ann@corp.example>\n",
                             "From: \"Daemon, Pat\" <pat.daemon@example.org>\n",
                             "From: root <root@laptop.example>\n",
                             "From: admin@example.net\nOrganization: Auto Bulk Lists Ltd\n",
                             "From: \xc3\xa5sa@example.se\n",
                             "From: Notification Office <office@city.example>\n"};
const QByteArrayList texts{"It makes a noise.", "Auto-Submitted: auto-replied\nis what I saw.",
                           "---------- Forwarded message ----------\nFrom: MAILER-DAEMON@x\nReturn-Path: <>\n",
                           "List-Unsubscribe: how do I do that?", ""};

TEST(AutomaticMail, TwoHundredMailsOfPeopleAreOrdinary) {
    QRandomGenerator random(20261116);
    const auto one = [&](const auto &list) {
        return *std::next(list.begin(), random.bounded(static_cast<int>(std::size(list))));
    };
    std::set<QByteArray> different;
    for (int i = 0; i < 200; ++i) {
        Case mail = one(ordinary);
        QByteArray pieces;
        for (const QByteArrayList &lines : makes)
            pieces += one(lines);
        if (!mail.header.toLower().contains("from:"))
            pieces += one(senders);
        mail.header.prepend(pieces);
        if (mail.body == "Text")
            mail.body = one(texts);
        different.insert(messageOf(mail));
        EXPECT_EQ(automaticKind(messageOf(mail), own), None) << messageOf(mail).toStdString();
    }
    EXPECT_GT(different.size(), 190U);
}

/// One is a posting of a mailing list, with all the fields of one; the other 106 are people's.
TEST(AutomaticMail, OfOtherPeoplesMessagesThePostingOfAListAloneIs) {
    const QString named = qEnvironmentVariable("ORVELLE_MAIL_CORPUS");
    const QString folder = named.isEmpty() ? QString(ORVELLE_MAIL_CORPUS) : named;
    if (!QDir(folder).exists())
        GTEST_SKIP() << "no corpus at " << qPrintable(folder) << "; name one in ORVELLE_MAIL_CORPUS";
    QDirIterator files(folder, {"*.eml"}, QDir::Files, QDirIterator::Subdirectories);
    std::map<QString, AutomaticKind> found;
    int count = 0;
    for (; files.hasNext(); ++count) {
        const QString path = files.next();
        if (const AutomaticKind kind = automaticKind(contentOf(path), own); kind != None)
            found[path.section(u'/', -2)] = kind;
    }
    EXPECT_GT(count, 0);
    EXPECT_EQ(found, (std::map<QString, AutomaticKind>{{"thirdparty/014.eml", List}}));
}

} // namespace

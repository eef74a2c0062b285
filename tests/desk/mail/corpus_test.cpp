// Holds the reader against a folder of other people's messages, each with a description of what is in it beside it. The
// folder is not part of the project: it is named by ORVELLE_MAIL_CORPUS or stands beside the checkout.
#include "desk/mail/charset.h"
#include "desk/mail/html.h"
#include "desk/mail/parser.h"
#include "print.h"
#include "support/files.h"

#include <QDirIterator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace desk;

namespace {

QString corpusFolder() {
    const QString named = qEnvironmentVariable("ORVELLE_MAIL_CORPUS");
    return named.isEmpty() ? QString(ORVELLE_MAIL_CORPUS) : named;
}

/// Empty lines at the end apart: the files were converted from one kind of line end to another.
QString lines(QString text) {
    text.replace("\r\n", "\n").replace('\r', '\n').replace(QChar(0), QChar::ReplacementCharacter);
    while (text.endsWith('\n'))
        text.chop(1);
    return text;
}

/// Where the description has U+FFFD, its writer could not read one character: any will do.
QString knownOf(QString actual, const QString &described) {
    for (qsizetype i = 0; i < described.size() && actual.size() == described.size(); ++i) {
        if (described[i] == QChar(QChar::ReplacementCharacter))
            actual[i] = QChar::ReplacementCharacter;
    }
    return actual;
}

void expectText(const QString &actual, const QString &described) { EXPECT_EQ(knownOf(actual, described), described); }

/// A part as the description has it.
class Part {
  public:
    explicit Part(const QJsonValue &value) : m_part(value.toObject()) {}

    [[nodiscard]] QJsonValue header(const QString &name) const {
        for (const QJsonValue &entry : m_part["headers"].toArray()) {
            if (entry["name"].toString() == name)
                return entry["value"];
        }
        return QJsonValue::Null;
    }

    [[nodiscard]] bool is(const QString &kind) const { return m_part["body"].toObject().contains(kind); }
    [[nodiscard]] QString text(const QString &kind) const { return m_part["body"][kind].toString(); }
    /// A text that the description calls an attachment for no other reason than that the end of the message came
    /// before the boundary, or that a multipart had no boundary at all. To a person it is the text of the message.
    [[nodiscard]] bool isMisfiledText() const {
        const QString type = header("content_type")["ContentType"]["c_type"].toString();
        const bool cutOff = m_part["is_encoding_problem"].toBool() && (type.isEmpty() || type == "text");
        return (cutOff || type == "multipart") && name().isEmpty() && header("content_disposition").isNull() &&
               (is("Text") || is("Html"));
    }
    [[nodiscard]] QJsonObject message() const { return m_part["body"]["Message"].toObject(); }

    [[nodiscard]] QByteArray bytes() const {
        QByteArray result;
        for (const QString kind : {"Binary", "InlineBinary"}) {
            for (const QJsonValue &byte : m_part["body"][kind].toArray())
                result += static_cast<char>(byte.toInt());
        }
        return result;
    }

    [[nodiscard]] QString name() const {
        for (const auto &[field, attribute] :
             {std::pair("content_disposition", "filename"), std::pair("content_type", "name")}) {
            for (const QJsonValue &entry : header(field)["ContentType"]["attributes"].toArray()) {
                if (entry["name"].toString() == attribute)
                    return entry["value"].toString();
            }
        }
        return {};
    }

  private:
    QJsonObject m_part;
};

void expectMessage(const Message &message, const QJsonObject &oracle);

void expectBody(const QString &actual, const QList<Part> &parts, const QString &kind) {
    QStringList texts;
    bool mixed = false;
    for (const Part &part : parts) {
        const bool wanted = part.is(kind);
        mixed = mixed || (!wanted && (part.is("Text") || part.is("Html")));
        if (wanted)
            texts += lines(part.text(kind));
    }
    if (texts.size() == 1 && !mixed) {
        expectText(lines(actual), texts.first());
        return;
    }
    if (texts.isEmpty()) {
        EXPECT_EQ(actual, "");
    }
    qsizetype at = 0;
    for (const QString &text : texts) {
        const QString piece = kind == "Html" ? bodyOfPage(text) : text;
        at = lines(actual).indexOf(piece, at);
        EXPECT_GE(at, 0) << qPrintable(piece) << "\nis not, or not in its place, in\n" << qPrintable(actual);
        at = std::max<qsizetype>(at, 0);
    }
}

void expectAttachment(const Attachment &attachment, const Part &part) {
    const bool embedded = attachment.type == AttachmentType::EmbeddedMessage;
    EXPECT_EQ(embedded, part.is("Message"));
    expectText(attachment.name, part.name());
    const QString kind = part.is("Html") ? "Html" : "Text";
    if (part.is("Message")) {
        expectMessage(parseMessage(attachment.data), part.message());
    } else if (part.is(kind)) {
        expectText(lines(decodeText(attachment.data, attachment.charset.toLatin1())), lines(part.text(kind)));
    } else {
        // The descriptions were made of files with LF; what travels unencoded has CR LF here.
        const bool unencoded = !part.bytes().contains('\r') && !part.bytes().contains('\0');
        EXPECT_EQ(unencoded ? QByteArray(attachment.data).replace("\r\n", "\n") : attachment.data, part.bytes());
    }
}

QJsonValue firstAddress(const QJsonValue &header) {
    const QJsonValue address = header["Address"];
    const QJsonArray groups = address["Group"].toArray();
    return groups.isEmpty() ? address["List"][0] : groups[0]["addresses"][0];
}

void expectDate(const QDateTime &sentAt, const QJsonValue &date) {
    if (date.isUndefined() || date.isNull())
        return;
    const int offset = (date["tz_hour"].toInt() * 60 + date["tz_minute"].toInt()) * 60;
    const QDateTime expected(QDate(date["year"].toInt(), date["month"].toInt(), date["day"].toInt()),
                             QTime(date["hour"].toInt(), date["minute"].toInt(), date["second"].toInt()),
                             Qt::OffsetFromUTC, date["tz_before_gmt"].toBool() ? -offset : offset);
    EXPECT_EQ(sentAt, expected) << qPrintable(sentAt.toString()) << " is not " << qPrintable(expected.toString());
}

void expectMessage(const Message &message, const QJsonObject &oracle) {
    QList<Part> parts;
    for (const QJsonValue &part : oracle["parts"].toArray())
        parts += Part(part);
    const auto listed = [&](const QString &list) {
        QList<Part> result;
        for (const QJsonValue &index : oracle[list].toArray())
            result += parts.at(index.toInt());
        return result;
    };
    const Part &root = parts.first();
    expectText(message.subject, root.header("subject")["Text"].toString());
    EXPECT_EQ(message.from.name, firstAddress(root.header("from"))["name"].toString());
    EXPECT_EQ(message.from.address, firstAddress(root.header("from"))["address"].toString());
    expectDate(message.sentAt, root.header("date")["DateTime"]);
    EXPECT_EQ(message.messageId, root.header("message_id")["Text"].toString());
    QList<Part> attachments = listed("attachments");
    QList<Part> misfiled = attachments;
    misfiled.removeIf(std::not_fn(&Part::isMisfiledText));
    attachments.removeIf(std::mem_fn(&Part::isMisfiledText));
    expectBody(message.text, listed("text_body") + misfiled, "Text");
    expectBody(message.html, listed("html_body") + misfiled, "Html");
    ASSERT_EQ(message.attachments.size(), attachments.size());
    for (qsizetype i = 0; i < attachments.size(); ++i) {
        SCOPED_TRACE(i);
        expectAttachment(message.attachments.at(i), attachments.at(i));
    }
}

/// Messages that the description reads wrongly, or in one of several ways that are as good, and why.
const std::pair<QString, const char *> exceptions[] = {
    {"legacy/017", "leaves two x-uuencode attachments encoded; a person wants the pictures"},
    {"legacy/026", "leaves an x-uuencode attachment encoded"},
    {"legacy/048", "leaves three x-uuencode attachments encoded"},
    {"malformed/008", "takes a boundary of the outer multipart, \"ab\", for one of the inner, \"a\""},
    {"malformed/009", "an outer boundary ends an inner multipart that has no end; it is taken for text"},
    {"malformed/011", "as malformed/009"},
    {"malformed/012", "as malformed/009, with embedded messages"},
    {"malformed/017", "does not read the name of an attachment behind an empty disposition"},
    {"malformed/019", "reads a time from a damaged date, \"10:00:t\"; no reading of it is certain"},
    {"thirdparty/002", "decodes the blank-separated word behind the end of a base64 text as more base64"},
    {"thirdparty/015", "finds one of the three embedded messages that the text lists"},
};

bool isException(const QString &path) {
    return std::ranges::any_of(exceptions, [&](const auto &entry) { return path.endsWith(entry.first + ".eml"); });
}

TEST(MailCorpus, ReadsEveryMessageAsDescribed) {
    const QString folder = corpusFolder();
    if (!QDir(folder).exists())
        GTEST_SKIP() << "no corpus at " << qPrintable(folder) << "; name one in ORVELLE_MAIL_CORPUS";
    QDirIterator files(folder, {"*.eml"}, QDir::Files, QDirIterator::Subdirectories);
    int count = 0;
    while (files.hasNext()) {
        const QString path = files.next();
        if (isException(path))
            continue;
        SCOPED_TRACE(qPrintable(path));
        const QString description = path.chopped(4) + ".json";
        expectMessage(parseMessage(contentOf(path)), QJsonDocument::fromJson(contentOf(description)).object());
        ++count;
    }
    EXPECT_GT(count, 0);
}

} // namespace

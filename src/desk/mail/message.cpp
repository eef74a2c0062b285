#include "desk/mail/message.h"

#include "desk/mail/bounds.h"
#include "desk/mail/html.h"

namespace desk {
namespace {

constexpr qsizetype longestFileName = 200;

bool isDeviceName(const QString &name) {
    static const QStringList devices = {"con", "prn", "aux", "nul"};
    const QString stem = name.section(u'.', 0, 0).trimmed().toLower();
    const bool port = stem.size() == 4 && (stem.startsWith(u"com") || stem.startsWith(u"lpt")) && stem.back().isDigit();
    return port || devices.contains(stem);
}

QString extensionFor(const QString &mimeType) {
    static const QHash<QString, QString> extensions = {
        {"text/plain", ".txt"},      {"text/html", ".html"},      {"text/calendar", ".ics"},
        {"text/csv", ".csv"},        {"image/jpeg", ".jpg"},      {"image/png", ".png"},
        {"image/gif", ".gif"},       {"image/bmp", ".bmp"},       {"image/tiff", ".tif"},
        {"image/svg+xml", ".svg"},   {"application/zip", ".zip"}, {"application/pdf", ".pdf"},
        {"application/rtf", ".rtf"}, {"message/rfc822", ".eml"},  {"message/global", ".eml"},
        {"text/vcard", ".vcf"},      {"text/x-vcard", ".vcf"},    {"application/msword", ".doc"}};
    return extensions.value(mimeType, ".dat");
}

/// Within what file systems take: in characters on some, in bytes on others, with room for what a program puts before
/// or behind a name of its own.
QString shortened(const QString &name) {
    constexpr qsizetype mostBytes = 240;
    QString kept = boundedFileName(name, longestFileName);
    for (qsizetype most = kept.size(); kept.toUtf8().size() > mostBytes; --most)
        kept = boundedFileName(kept, most);
    return kept;
}

} // namespace

QString Message::bodyText() const { return text.isEmpty() && !html.isEmpty() ? textFromHtml(html) : text; }

QString safeFileName(const Attachment &attachment) {
    QString name = attachment.name;
    name.replace(u'\\', u'/');
    name = name.sliced(name.lastIndexOf(u'/') + 1);
    for (QChar &c : name) {
        const bool refused = QStringView(u"<>:\"|?*").contains(c) || c.category() == QChar::Other_Control ||
                             c.category() == QChar::Other_Format;
        if (refused)
            c = u'_';
    }
    // Neither hidden files nor names that lose their end on other systems.
    while (name.startsWith(u'.') || name.startsWith(u' '))
        name.remove(0, 1);
    while (name.endsWith(u'.') || name.endsWith(u' '))
        name.chop(1);
    if (name.isEmpty())
        name = (attachment.type == AttachmentType::EmbeddedMessage ? "message" : "attachment") +
               extensionFor(attachment.mimeType);
    return shortened(isDeviceName(name) ? QString("_" + name) : name);
}

} // namespace desk

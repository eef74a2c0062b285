#include "desk/mail/headers.h"

#include "desk/mail/addresses.h"
#include "desk/mail/bounds.h"
#include "desk/mail/headertext.h"

namespace desk {
namespace {

/// More fields of one name, or identifiers in one field, than any honest message has.
constexpr qsizetype mostValues = 1000;
/// What of a field is read as text.
constexpr qsizetype longestText = qsizetype{256} * 1024;

QDateTime toQt(GDateTime *moment) {
    const int year = g_date_time_get_year(moment);
    const auto offset = static_cast<int>(g_date_time_get_utc_offset(moment) / 1'000'000);
    constexpr int longestOffset = 14 * 3600;
    if (year < 1900 || offset % 60 != 0 || std::abs(offset) > longestOffset)
        return {};
    return QDateTime::fromSecsSinceEpoch(g_date_time_to_unix(moment), Qt::OffsetFromUTC, offset);
}

std::optional<Importance> importanceOf(const QString &value) {
    const QString word = value.section(u' ', 0, 0).toLower();
    if (word == "high" || word == "urgent" || word.startsWith(u'1') || word.startsWith(u'2'))
        return Importance::High;
    if (word == "low" || word == "non-urgent" || word.startsWith(u'4') || word.startsWith(u'5'))
        return Importance::Low;
    if (word == "normal" || word == "medium" || word.startsWith(u'3'))
        return Importance::Normal;
    return std::nullopt;
}

} // namespace

QList<QByteArray> Headers::values(const char *name) const {
    QList<QByteArray> found;
    GMimeHeaderList *list = g_mime_object_get_header_list(m_object);
    const int count = g_mime_header_list_get_count(list);
    for (int i = 0; i < count && found.size() < mostValues; ++i) {
        GMimeHeader *header = g_mime_header_list_get_header_at(list, i);
        if (qstricmp(g_mime_header_get_name(header), name) == 0)
            found.append(QByteArray(g_mime_header_get_raw_value(header)));
    }
    return found;
}

bool Headers::has(const char *name) const { return !text(name).isEmpty(); }

QString Headers::text(const char *name) const {
    for (const QByteArray &value : values(name)) {
        QString decoded = decodeHeader(value.first(std::min(value.size(), longestText)), m_hints);
        if (!decoded.isEmpty())
            return decoded;
    }
    return {};
}

QList<Address> Headers::addresses(const char *name) const {
    QList<Address> all;
    for (const QByteArray &value : values(name))
        all += decodeAddresses(value, m_hints);
    return all;
}

QDateTime Headers::date(const char *name) const {
    const QByteArray value = text(name).toUtf8();
    const GDate moment(value.isEmpty() ? nullptr : g_mime_utils_header_decode_date(value.constData()));
    return moment ? toQt(moment.get()) : QDateTime();
}

QString Headers::identifier(const char *name) const { return identifiers(name).value(0); }

QStringList Headers::identifiers(const char *name) const {
    QStringList found;
    for (const QByteArray &value : values(name)) {
        const QString line = decodeHeader(value.first(std::min(value.size(), longestText)), m_hints);
        qsizetype at = 0;
        while (found.size() < mostValues) {
            const qsizetype open = line.indexOf(u'<', at);
            const qsizetype close = open < 0 ? -1 : line.indexOf(u'>', open);
            if (close < 0)
                break;
            if (const QString id = cleanIdentifier(line.sliced(open + 1, close - open - 1));
                !id.isEmpty() && id.size() <= longestIdentifier)
                found.append(id);
            at = close + 1;
        }
        // Some programs forget the brackets.
        const QString bare = line.contains(u'<') ? QString() : cleanIdentifier(line.section(u' ', 0, 0));
        if (!bare.isEmpty() && bare.size() <= longestIdentifier)
            found.append(bare);
    }
    return found;
}

Importance Headers::importance() const {
    for (const char *name : {"Importance", "X-Priority", "X-MSMail-Priority", "Priority"}) {
        if (const auto importance = importanceOf(text(name)))
            return *importance;
    }
    return Importance::Normal;
}

Sensitivity Headers::sensitivity() const {
    const QString word = text("Sensitivity").toLower();
    if (word == "personal")
        return Sensitivity::Personal;
    if (word == "private")
        return Sensitivity::Private;
    return word.endsWith(u"confidential") ? Sensitivity::Confidential : Sensitivity::Normal;
}

QString cleanIdentifier(const QString &text) {
    QString id = oneLine(text);
    id.removeIf([](QChar c) { return c.isSpace() || c == u'<' || c == u'>'; });
    // What looks like the start of an encoded word could not be written.
    return id.contains(u"=?") ? id.remove(u'?') : id;
}

QString cleanMimeType(const QString &text) {
    constexpr qsizetype longest = 100;
    const auto isToken = [](QChar c) {
        return c > u' ' && c < QChar(0x7F) && !QStringView(u"()<>@,;:\\\"[]?=").contains(c);
    };
    const bool valid = text.count(u'/') == 1 && !text.startsWith(u'/') && !text.endsWith(u'/') &&
                       !text.startsWith(u"multipart/", Qt::CaseInsensitive) && text.size() <= longest &&
                       std::all_of(text.begin(), text.end(), isToken);
    return valid ? text.toLower() : QString("application/octet-stream");
}

QString cleanCharset(const QString &text) {
    constexpr qsizetype longest = 60;
    QString name = text.first(std::min(text.size(), longest));
    name.removeIf(
        [](QChar c) { return !QStringView(u"-_.:+").contains(c) && !(c < QChar(0x7F) && c.isLetterOrNumber()); });
    return name;
}

} // namespace desk

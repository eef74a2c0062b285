#include "platform/registry/hive.h"

#include <QStringDecoder>
#include <QStringList>

namespace registry {

namespace {

const QString firstLine = QStringLiteral("orvelle registry 1");
const QString lastLine = QStringLiteral("end %1");

/// The long name of the person's part of the registry is the same as the short one.
QString folded(QString path) {
    const QString longName = QStringLiteral("HKEY_CURRENT_USER\\");
    if (path.startsWith(longName, Qt::CaseInsensitive))
        path = QStringLiteral("HKCU\\") + path.mid(longName.size());
    return path.toCaseFolded();
}

QString escaped(const QString &text, QStringView alsoThese = {}) {
    QString result;
    for (const QChar character : text) {
        if (character == u'%' || character < QChar(0x20) || alsoThese.contains(character))
            result += QStringLiteral("%%1").arg(character.unicode(), 2, 16, QChar(u'0'));
        else
            result += character;
    }
    return result;
}

std::optional<QString> unescaped(const QString &text) {
    QString result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i) != u'%') {
            result += text.at(i);
            continue;
        }
        bool isNumber = false;
        const uint code = QStringView(text).mid(i + 1, 2).toUInt(&isNumber, 16);
        if (!isNumber || i + 2 >= text.size())
            return std::nullopt;
        result += QChar(static_cast<char16_t>(code));
        i += 2;
    }
    return result;
}

} // namespace

std::optional<Hive> Hive::parse(const QByteArray &bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString content = decoder(bytes);
    const QStringList lines = content.split(u'\n');
    const qsizetype values = lines.size() - 3;
    if (decoder.hasError() || values < 0 || lines.first() != firstLine || lines.at(values + 1) != lastLine.arg(values))
        return std::nullopt;
    Hive hive;
    for (qsizetype i = 1; i <= values; ++i) {
        const qsizetype sign = lines.at(i).indexOf(u'=');
        const std::optional<QString> path = unescaped(lines.at(i).left(sign));
        const std::optional<QString> text = unescaped(lines.at(i).mid(sign + 1));
        if (sign <= 0 || !path || !text)
            return std::nullopt;
        hive.set(*path, *text);
    }
    return hive;
}

QByteArray Hive::serialize() const {
    QStringList lines{firstLine};
    for (const Entry &entry : m_entries)
        lines << escaped(entry.path, u"=") + u'=' + escaped(entry.text);
    lines << lastLine.arg(m_entries.size()) << QString();
    return lines.join(u'\n').toUtf8();
}

std::optional<QString> Hive::text(const QString &path) const {
    const auto entry = m_entries.constFind(folded(path));
    return entry == m_entries.constEnd() ? std::nullopt : std::optional(entry->text);
}

void Hive::set(const QString &path, const QString &text) { m_entries.insert(folded(path), {path, text}); }

bool Hive::remove(const QString &path) { return m_entries.remove(folded(path)) > 0; }

} // namespace registry

#include "companions/settings/settingsfile.h"

#include "platform/value/failure.h"

#include <QStringDecoder>

namespace settings {

namespace {

constexpr char mark[] = "# Orvelle settings 1";

constexpr char endOfFile[] = "end";

QString written(const QString &field) {
    QString text;
    for (const QChar each : field) {
        if (each == u'\\')
            text += "\\\\";
        else if (each == u'\t')
            text += "\\t";
        else if (each == u'\n')
            text += "\\n";
        else if (each == u'\r')
            text += "\\r";
        else
            text += each;
    }
    return text;
}

QString rowLine(const QStringList &row) {
    QStringList fields;
    for (const QString &field : row)
        fields.append(written(field));
    const QString line = fields.join(u'\t');
    if (line.isEmpty())
        return "\\e";
    return line.startsWith(u'#') || line.startsWith(u'[') ? u'\\' + line : line;
}

/// The first line that is no UTF-8.
qsizetype lineOfBadText(const QByteArray &content) {
    qsizetype number = 1;
    for (const QByteArray &line : content.split('\n')) {
        QStringDecoder decoder(QStringDecoder::Utf8);
        const QString text = decoder(line);
        if (decoder.hasError())
            break;
        ++number;
    }
    return number;
}

QString readField(QStringView text, qsizetype line) {
    QString field;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text[at] != u'\\') {
            field += text[at];
            continue;
        }
        if (++at == text.size())
            refuseLine(line, "a backslash ends the field");
        switch (text[at].unicode()) {
        case u'\\':
        case u'#':
        case u'[':
            field += text[at];
            break;
        case u't':
            field += u'\t';
            break;
        case u'n':
            field += u'\n';
            break;
        case u'r':
            field += u'\r';
            break;
        case u'e':
            break;
        default:
            refuseLine(line, "no such sign behind a backslash");
        }
    }
    return field;
}

} // namespace

QByteArray writeSections(const QList<Section> &sections, const QStringList &headings) {
    QString text = QString(mark) + u'\n';
    for (qsizetype at = 0; at < sections.size(); ++at) {
        text += QString("\n[%1]\n").arg(sections[at].name);
        if (!headings.value(at).isEmpty())
            text += "# " + headings[at] + u'\n';
        for (const Row &row : sections[at].rows)
            text += rowLine(row.fields) + u'\n';
    }
    text += QString("\n[%1]\n").arg(endOfFile);
    return text.toUtf8();
}

void refuseLine(qsizetype line, const QString &problem) {
    throw Failure(failures::invalidCall, QString("Line %1 can't be taken: %2.").arg(line).arg(problem));
}

QList<Section> readSections(const QByteArray &content) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(content);
    if (decoder.hasError())
        refuseLine(lineOfBadText(content), "it is no UTF-8 text");
    const QStringList lines = text.split(u'\n');
    QList<Section> sections;
    bool hasEnded = false;
    for (qsizetype at = 0; at < lines.size(); ++at) {
        QStringView line = lines[at];
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (at == 0 && line != QLatin1String(mark))
            refuseLine(1, "the file does not begin with \"# Orvelle settings 1\"");
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        if (line.startsWith(u'[')) {
            if (!line.endsWith(u']'))
                refuseLine(at + 1, "the bracket of the section is not closed");
            const QString name = line.mid(1, line.size() - 2).trimmed().toString();
            if (hasEnded)
                refuseLine(at + 1, "a section stands behind the end");
            if (name == endOfFile) {
                hasEnded = true;
                continue;
            }
            if (std::any_of(sections.begin(), sections.end(), [&](const Section &each) { return each.name == name; }))
                refuseLine(at + 1, "the section comes a second time");
            sections.append({name, {}, at + 1});
            continue;
        }
        if (hasEnded)
            refuseLine(at + 1, "a row stands behind the end");
        if (sections.isEmpty())
            refuseLine(at + 1, "a row stands before the first section");
        Row row{{}, at + 1};
        for (const QStringView field : line.split(u'\t'))
            row.fields.append(readField(field, at + 1));
        sections.last().rows.append(row);
    }
    if (!hasEnded)
        refuseLine(lines.size(), "the file ends without \"[end]\", so it was cut off");
    return sections;
}

} // namespace settings

#include "desk/commands/output.h"

#include "desk/store/records.h"
#include "platform/value/convert.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <cstdio>

namespace desk {
namespace {

void write(const QByteArray &bytes) {
    const auto size = static_cast<std::size_t>(bytes.size());
    if (std::fwrite(bytes.constData(), 1, size, stdout) != size || std::fflush(stdout) != 0)
        throw Failure(failures::permissionDenied, QStringLiteral("The output can't be written."));
}

QString typeName(PropertyType type) {
    switch (type) {
    case PropertyType::Number:
        return QStringLiteral("number");
    case PropertyType::Date:
        return QStringLiteral("date");
    case PropertyType::YesNo:
        return QStringLiteral("yesno");
    case PropertyType::Text:
        break;
    }
    return QStringLiteral("text");
}

} // namespace

void print(const QString &text) {
    QString clean = text;
    for (QChar &letter : clean) {
        if (letter.category() == QChar::Other_Control && letter != u'\n' && letter != u'\t')
            letter = letter == u'\r' ? QChar(u' ') : QChar(QChar::ReplacementCharacter);
    }
    write(clean.toUtf8());
}

void printLine(const QString &text) { print(text + u'\n'); }

void printJson(const QJsonValue &document) {
    const QJsonDocument whole =
        document.isArray() ? QJsonDocument(document.toArray()) : QJsonDocument(document.toObject());
    write(whole.toJson(QJsonDocument::Indented));
}

void printTable(const QStringList &header, const QList<QStringList> &rows) {
    constexpr qsizetype widest = 48;
    QList<qsizetype> widths;
    for (qsizetype column = 0; column < header.size(); ++column) {
        qsizetype width = header.at(column).size();
        for (const QStringList &row : rows)
            width = std::max(width, std::min(widest, row.at(column).size()));
        widths.append(width);
    }
    const auto line = [&](const QStringList &cells) {
        QString text;
        for (qsizetype column = 0; column < cells.size(); ++column) {
            const bool isLast = column + 1 == cells.size();
            const QString &cell = cells.at(column);
            if (isLast)
                text += cell;
            else if (cell.size() > widths.at(column))
                text += cell.left(widths.at(column) - 1) + QChar(0x2026) + QStringLiteral("  ");
            else
                text += cell.leftJustified(widths.at(column)) + QStringLiteral("  ");
        }
        printLine(text);
    };
    line(header);
    for (const QStringList &row : rows)
        line(row);
}

QString plainText(const Value &value) {
    if (value.holds<bool>())
        return toBool(value) ? QStringLiteral("yes") : QStringLiteral("no");
    if (value.holds<DateTime>()) {
        const DateTime moment = toDateTime(value);
        return moment.isZero() ? QString() : moment.isoText().left(QStringLiteral("yyyy-MM-dd HH:mm").size());
    }
    return value.isNull() ? QString() : toText(value).simplified();
}

QJsonValue jsonOf(const Value &value) {
    if (value.isEmpty() || value.isNull())
        return QJsonValue::Null;
    if (value.holds<bool>())
        return toBool(value);
    if (value.isText())
        return toText(value);
    if (value.holds<DateTime>()) {
        const DateTime moment = toDateTime(value);
        return moment.isZero() ? QJsonValue() : QJsonValue(moment.isoText().replace(u' ', u'T'));
    }
    return toDouble(value);
}

QJsonObject jsonOf(const Property &property) {
    return {{QStringLiteral("name"), property.name},
            {QStringLiteral("type"), typeName(property.type)},
            {QStringLiteral("value"), jsonOf(property.value)}};
}

} // namespace desk

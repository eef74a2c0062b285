#include "platform/ado/criterion.h"

#include "platform/ado/equaltext.h"
#include "platform/ado/errors.h"
#include "platform/value/convert.h"

namespace ado {

namespace {

[[noreturn]] void refuse(const QString &text) {
    throw Failure(invalidArgument,
                  QString("The search criterion can't be read: %1. It has the form \"name = number\" or "
                          "\"name = 'text'\", a quote inside the text doubled.")
                      .arg(text.left(500)));
}

/// The content of a text in single quotes, or nothing when it is none, or goes on behind its end.
std::optional<QString> unquoted(QStringView text) {
    if (text.size() < 2 || !text.startsWith(u'\'') || !text.endsWith(u'\''))
        return std::nullopt;
    QString result;
    const QStringView inside = text.mid(1, text.size() - 2);
    for (qsizetype at = 0; at < inside.size(); ++at) {
        if (inside[at] == u'\'' && (++at == inside.size() || inside[at] != u'\''))
            return std::nullopt;
        result += inside[at];
    }
    return result;
}

} // namespace

Criterion Criterion::parse(const QString &text) {
    const qsizetype sign =
        text.startsWith(u'[') ? text.indexOf(u'=', std::max<qsizetype>(0, text.indexOf(u']'))) : text.indexOf(u'=');
    if (sign < 0)
        refuse(text);
    Criterion criterion;
    criterion.column = text.left(sign).trimmed();
    if (criterion.column.startsWith(u'[') && criterion.column.endsWith(u']'))
        criterion.column = criterion.column.mid(1, criterion.column.size() - 2);
    if (criterion.column.isEmpty())
        refuse(text);

    const QString value = text.mid(sign + 1).trimmed();
    bool isNumber = false;
    const double number = QLocale::c().toDouble(value, &isNumber);
    if (const std::optional<QString> content = unquoted(value))
        criterion.value = *content;
    else if (isNumber && std::isfinite(number))
        criterion.value = number;
    else
        refuse(text);
    return criterion;
}

bool Criterion::holds(const Value &stored) const {
    if (stored.isNull())
        return false;
    if (value.isText())
        return stored.isText() && equalText(std::get<QString>(stored.held()), std::get<QString>(value.held()));
    const double number = std::get<double>(value.held());
    if (stored.holds<DateTime>())
        return std::get<DateTime>(stored.held()).days == number;
    return !stored.isText() && toDouble(stored) == number;
}

} // namespace ado

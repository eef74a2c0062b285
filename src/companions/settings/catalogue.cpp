#include "companions/settings/catalogue.h"

#include "platform/value/convert.h"

namespace settings {

namespace {

constexpr Known known[] = {
    {"ServiceStart", Known::Moment, "start of the service day, such as 8:00:00 AM"},
    {"ServiceEnd", Known::Moment, "end of the service day"},
    {"BreakStart", Known::Moment, "start of the daily break"},
    {"BreakEnd", Known::Moment, "end of the daily break"},
    {"DayServiceStart", Known::Number, "first day of the service week (Monday is 1, Sunday 7)"},
    {"DayServiceEnd", Known::Number, "last day of the service week, such as 5 for Friday"},
    {"ServiceHours", Known::Text, "kept for other programs"},
    {"LunchHours", Known::Text, "kept for other programs"},
    {"EmailFolders", Known::Text, "monitored mail folders, one path a line"},
    {"EmailSubFolders", Known::Text, "1 files the mails of a ticket in a subfolder of its own"},
    {"RepliesNeedTicket", Known::Number, "1 makes a reply whose {number} is no ticket's a new ticket"},
    {"EmailFrom", Known::Text, "name to send under; used when longer than 5 characters"},
    {"EmailToCaller", Known::Text, "template of mail to the caller"},
    {"EmailToResponsible", Known::Text, "template of mail to the responsible person"},
    {"PrintOut", Known::Text, "template of a printed ticket"},
    {"ConvertedEmailMessage", Known::Text, "text of the confirmation mail; empty sends none"},
    {"ConvertedEmailSubject", Known::Text, "subject of the confirmation mail"},
    {"NewHTML", Known::Text, "page for a new ticket's description; empty takes the built-in one"},
    {"KBPath", Known::Text, "folder path of the knowledge base"},
    {"PathToOnlineHelpDesk", Known::Text, "address of the online server; empty turns online tickets off"},
    {"AutoTrackingTickets", Known::Number, "1 fetches online tickets by itself"},
    {"OnlineTrackingTimes", Known::Number, "minutes between two fetches of online tickets"},
    {"Region", Known::Region, "order of dates in work logs, such as de_DE; empty: that of each machine"},
    {"RootFolderPath", Known::Text, "path of the ticket folder"},
    {"TicketNumbersNotCounted", Known::Text, "which numbers of the ticket folder have been told of as not counted"},
};

/// The system takes the time of a date with one too. A date alone, such as 8.30, would be midnight to it.
bool isTimeOfDay(const QString &value) {
    const std::optional<DateTime> moment = parseDateTime(value);
    return moment && (moment->isZero() || *moment != moment->dateOnly());
}

} // namespace

std::span<const Known> knownSettings() { return known; }

const Known *findKnown(const QString &name) {
    for (const Known &each : known)
        if (name.compare(QLatin1String(each.name), Qt::CaseInsensitive) == 0)
            return &each;
    return nullptr;
}

std::optional<QString> problemWith(const QString &name, const QString &value) {
    if (name.trimmed().isEmpty())
        return "A setting needs a name.";
    const Known *setting = findKnown(name);
    if (!setting)
        return std::nullopt;
    if (setting->kind == Known::Moment && !isTimeOfDay(value.trimmed()))
        return QString("%1 needs a time of day, such as 8:00:00 AM, and \"%2\" is none.").arg(name, value);
    if (setting->kind == Known::Number && !value.trimmed().isEmpty() &&
        Attempt([&] { static_cast<void>(toInt16(value.trimmed())); }))
        return QString("%1 needs a whole number, and \"%2\" is none.").arg(name, value);
    if (setting->kind == Known::Region && !value.trimmed().isEmpty() && !Region::named(value.trimmed()))
        return QString("%1 needs a region such as de_DE or en_GB (a language and a country), and \"%2\" is none.")
            .arg(name, value);
    return std::nullopt;
}

} // namespace settings

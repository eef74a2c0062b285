#include "orvelle/ticket/worklog.h"

#include "orvelle/core/components.h"
#include "orvelle/core/errorhandler.h"
#include "orvelle/core/trace.h"
#include "orvelle/reference/settings.h"
#include "platform/controls/control.h"
#include "platform/scripting/dictionary.h"
#include "platform/value/convert.h"
#include "platform/value/random.h"

namespace {
/// Stands behind each row of the log's text, the last one included.
const QString &fncSeparator() {
    static const QString text = QStringLiteral("\r\n====\r\n");
    return text;
}

/// The columns of a list box's row.
enum ListColumn { descriptionColumn, dateColumn, minutesColumn, userColumn };

const QLocale &fncRegion() { return *objWorkRegion ? **objWorkRegion : Region::locale(); }

/// The number, or the first behind it that is no row's yet: each road into a log counts in its own way.
QString fncFreeKey(const scripting::Dictionary<Ref<cWorkDescription>> &dicWorkDesc, qint32 number) {
    while (dicWorkDesc.Exists(QString::number(number)))
        ++number;
    return QString::number(number);
}
} // namespace

QString cWorkDescription::ToString() const {
    return Description + u'\t' + formatDateTime(WorkDate, fncRegion()) + u'\t' + QString::number(Minutes) + u'\t' +
           User;
}

void cWorkDescription::AddRow(controls::Control &ListBox) const {
    ListBox.AddItem("");
    const int row = ListBox.ListCount() - 1;
    ListBox.SetList(row, descriptionColumn, Description);
    ListBox.SetList(row, dateColumn, WorkDate);
    ListBox.SetList(row, minutesColumn, Minutes);
    ListBox.SetList(row, userColumn, User);
}

void cWorkDescription::FromRow(const controls::Control &ListBox, int intRow) {
    Description = toText(ListBox.List(intRow, descriptionColumn));
    WorkDate = toDateTime(ListBox.List(intRow, dateColumn));
    Minutes = toInt16(ListBox.List(intRow, minutesColumn));
    User = toText(ListBox.List(intRow, userColumn));
}

void cWorkDescription::FromString(const QString &StringToParse) try {
    subTrace("Attempting to split the work description " + StringToParse);
    const QStringList parts = StringToParse.split(u'\t');
    if (parts.size() != 4)
        return;
    Description = parts[descriptionColumn];
    if (const std::optional<DateTime> date = parseDateTime(parts[dateColumn], fncRegion()))
        WorkDate = *date;
    Minutes = isNumeric(parts[minutesColumn]) ? toInt16(parts[minutesColumn]) : qint16{0};
    User = parts[userColumn];
} catch (const Failure &failure) {
    subErrorHandler(failure, "cWorkDescription.FromString");
}

void cWorkDescription::RandomData(DateTime dteDate, const QString &strResponsibleName) {
    Minutes = toInt16(Random::next() * 120);
    WorkDate = dteDate;
    User = strResponsibleName;
    Description = "Example work";
}

cWorkDescs::cWorkDescs() : dicWorkDesc(fncCreateDic<Ref<cWorkDescription>>()) {}

void cWorkDescs::ReadFromListBox(const controls::Control &ListBox) {
    for (int row = 0; row < ListBox.ListCount(); ++row) {
        const auto objWork = Ref<cWorkDescription>::make();
        objWork->FromRow(ListBox, row);
        dicWorkDesc->Add(fncFreeKey(*dicWorkDesc, row), objWork);
    }
}

QString cWorkDescs::ToString() const {
    QString text;
    for (const Ref<cWorkDescription> &objWork : dicWorkDesc->Items())
        text += objWork->ToString() + fncSeparator();
    return text;
}

void cWorkDescs::FromString(const QString &StringToParse) try {
    subTrace("Parsing a work description text block of length &  " + QString::number(StringToParse.size()));
    dicWorkDesc = fncCreateDic<Ref<cWorkDescription>>();
    for (const QString &piece : StringToParse.split(fncSeparator())) {
        if (piece.isEmpty())
            continue;
        const auto objWork = Ref<cWorkDescription>::make();
        objWork->FromString(piece);
        dicWorkDesc->Add(QString::number(dicWorkDesc->Count()), objWork);
    }
} catch (const Failure &failure) {
    subErrorHandler(failure, "cWorkDescs.FromString");
}

qint16 cWorkDescs::MinutesTotal() const {
    qint32 total = 0;
    for (const Ref<cWorkDescription> &objWork : dicWorkDesc->Items()) {
        if (objWork)
            total = toInt16(total + objWork->Minutes);
    }
    return static_cast<qint16>(total);
}

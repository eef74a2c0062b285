#include "orvelle/reference/settings.h"

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/reference/texts.h"
#include "platform/value/convert.h"

ProcessLocal<Ref<cSettings>> objSettings;
ProcessLocal<std::optional<QLocale>> objWorkRegion;

namespace {
Ref<ado::Recordset> fncOpenTable(const QString &strSource, bool blnReadOnly) {
    return fncReturnRecordset(strSource, blnReadOnly, true, false);
}

/// A log in another order than the helpdesk's is worse than none, so a region that isn't one is no region to go on
/// with.
std::optional<QLocale> fncRegionFrom(const QString &strName) {
    if (strName.isEmpty())
        return std::nullopt;
    std::optional<QLocale> region = Region::named(strName);
    if (!region)
        throw Failure(
            failures::invalidCall,
            QString("The setting Region holds \"%1\", which is no region. Write one such as de_DE or en_GB in "
                    "the settings program, or leave it empty for that of each machine.")
                .arg(strName.left(50)));
    return region;
}

void subSetDefaults(cOtherSettings &objOther) {
    objOther.SetValue("ServiceStart", "8:00:00 AM");
    objOther.SetValue("ServiceEnd", "5:00:00 PM");
    objOther.SetValue("BreakStart", "12:00:00 PM");
    objOther.SetValue("BreakEnd", "1:00:00 PM");
    objOther.SetValue("DayServiceStart", "0");
    objOther.SetValue("DayServiceEnd", "4");
    objOther.SetValue("ServiceHours", "1");
    objOther.SetValue("LunchHours", "1");
}
} // namespace

void subCreateSettings() {
    objSettings = Ref<cSettings>::make();
    reportTarget = Ref<ReportTarget>(objSettings.get());
}

cSettings::cSettings()
    : Callers(Ref<cCallersList>::make()), Responsibles(Ref<cResponsibles>::make()), Statuses(Ref<cSimpleList>::make()),
      CallerCategories(Ref<cSimpleList>::make()), ProblemTypes(Ref<cProblemTypes>::make()),
      CurrentResponsible(Ref<cResponsible>::make()), OtherSettings(Ref<cOtherSettings>::make()),
      EmailFolders(Ref<cSimpleList>::make()), objFolder(Ref<cFolderReference>::make()) {
    CallerCategories->ListName = LNGCALLERCATEGORY;
    Statuses->ListName = LNGSTATUS;
    subSetDefaults(*OtherSettings);
}

bool cSettings::ReadSettings() {
    // The first access of the run: it is what opens the connection.
    Responsibles->FromRS(fncOpenTable("SELECT * From tblPersons ORDER BY strPersonName", true));
    if (!*adoConnection)
        return false;
    ReadLists();
    EmailFolders->FromString(toText(OtherSettings->GetValue("EmailFolders", valuetype::text)));
    CurrentSelectedLanguage = fncReadLanguage();
    return true;
}

void cSettings::ReadLists() {
    ProblemTypes->FromRS(fncOpenTable("SELECT * From tblTypes ORDER BY strTypeDescription", true));
    CallerCategories->FromRS(fncOpenTable("SELECT * From tblCallerCategories ORDER BY strCallerCategory", true));
    Statuses->FromRS(fncOpenTable("SELECT * From tblStatuses ORDER BY strStatus", true));
    Callers->FromRS(fncOpenTable("SELECT * From tblCallers ORDER BY strFullName", true));
    OtherSettings->FromRS(fncOpenTable("tblOtherSettings", true));
    objWorkRegion = fncRegionFrom(toText(OtherSettings->GetValue("Region", valuetype::text)).trimmed());
}

void cSettings::SetCurrentResponsible(const QString &strName) {
    if (Responsibles->DicList->Exists(strName))
        CurrentResponsible = Responsibles->DicList->Item(strName);
    else
        CurrentResponsible->FullName = strName;
}

QString cSettings::NewTicketHTML(const QString &ProblemDescription) const {
    const QString place = "<span id ='Problem'></span>";
    QString page =
        "<html><head><style>p{ margin-bottom: -20 }</style></head><body topmargin='0' leftmargin='0'><p><font "
        "color='blue' size='4'>" +
        LNGPROBLEM + "</font></p><p>" + place + "&nbsp;</p><p>&nbsp;</p><p><font color='blue' size='4'>" + LNGSOLUTION +
        "</font></p><p>&nbsp;</p></body></html>";
    return page.replace(place, ProblemDescription);
}

void cSettings::WriteLists(const OpenTable &open) const {
    Responsibles->ToRS(open("tblPersons"));
    ProblemTypes->ToRS(open("tblTypes"));
    CallerCategories->ToRS(open("tblCallerCategories"));
    Statuses->ToRS(open("tblStatuses"));
    Callers->ToRS(open("tblCallers"));
}

void cSettings::WriteOtherSettings(const OpenTable &open) const {
    OtherSettings->SetValue("EmailFolders", EmailFolders->ToString());
    OtherSettings->ToRS(open("tblOtherSettings"));
}

void cSettings::SaveTo(const Ref<ado::Connection> &connection) const {
    const OpenTable open = [&](const QString &strTable) {
        return fncOpenRecordset(connection, strTable, ado::LockType::Optimistic);
    };
    WriteLists(open);
    WriteOtherSettings(open);
}

void cSettings::SaveSettings() try {
    subTrace("Saving setting values to database");
    const OpenTable openToWrite = [](const QString &strTable) { return fncOpenTable(strTable, false); };
    WriteLists(openToWrite);
    fncSetSettingFile(m_strLanguageFile, CurrentSelectedLanguage);
    WriteOtherSettings(openToWrite);
} catch (const Failure &failure) {
    subErrorHandler(failure, "cSettings.SaveSettings");
}

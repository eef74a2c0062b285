#include "orvelle/core/errorhandler.h"

#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "platform/window/window.h"

#include <QSysInfo>

ProcessLocal<QString> strErrorReport;

namespace {

constexpr char strSupportMailbox[] = "support@orvelle.example";

ProcessLocal<bool> blnReportShown;

QString fncComposeReport(const QString &strDescription, qint32 lngNumber, qint32 intLine, const QString &strProcedure) {
    return LNGERRTHISERROR + " :" + strLineEnd + fncLastStep() + strLineEnd + strLineEnd + //
           LNGERRSYSTEMERROR + " :" + strLineEnd + strDescription + strLineEnd +           //
           "#" + QString::number(lngNumber) + strLineEnd + strLineEnd +                    //
           LNGSUBROUTINE + " : " + strProcedure + " " + strLineEnd +                       //
           LNGERRLINE + ": " + QString::number(intLine);
}

/// The host may be what the report is about. Then nothing of it answers any more, and the mail needs another one.
void subLetGoOfDeadHost() {
    const auto failure = Attempt([] { (void)ouaOutlook->Version(); });
    if (!failure || (failure->number() != failures::peerGone && failure->number() != failures::peerStuck &&
                     failure->number() != failures::disconnected))
        return;
    ouaOutlook = host::Application();
    onsMAPI = host::NameSpace();
    oufTickets = host::MAPIFolder();
}

/// The report up to the end of the process. A failure in here has nobody left to be told to.
void subReport(const QString &strDescription, qint32 lngNumber, qint32 intLine, const QString &strProcedure) {
    const QString strHead = LNGERRINAPP + " " + strProgramTitle + " (" + fncOSName() + ")" + strLineEnd +
                            QString(70, u'-') + strLineEnd + strLineEnd;
    strErrorReport = fncComposeReport(strDescription, lngNumber, intLine, strProcedure);
    const QString strText = strHead + strErrorReport + strLineEnd + strLineEnd + LNGERRSENDREPORT + "?";
    blnReportShown = true;
    if (window::msgBox(strText, window::Buttons::YesNo, window::Icon::None, strProgramTitle) != window::Yes)
        return;
    subLetGoOfDeadHost();
    if (ouaOutlook.get().isNothing() && processHooks->subStartOutlook)
        processHooks->subStartOutlook(6);
    strErrorReport = strErrorReport + strLineEnd + "Outlook Version: " + ouaOutlook.get().Version() + strLineEnd;
    subMailErrorReport();
}

} // namespace

void subErrorHandler(const Failure &failure, const QString &strProcedure, std::source_location where) {
    if (blnTrace)
        subLogLine(QStringLiteral("Failure %1 in %2 at %3:%4, raised at %5:%6: %7")
                       .arg(failure.number())
                       .arg(strProcedure, where.file_name())
                       .arg(where.line())
                       .arg(failure.where().file_name())
                       .arg(failure.where().line())
                       .arg(failure.description()));
    subErrorHandler(failure.description(), failure.number(), static_cast<qint32>(where.line()), strProcedure);
}

void subErrorHandler(const QString &strDescription, qint32 lngNumber, qint32 intLine, const QString &strProcedure) {
    // Steps that were interrupted by the end fail on what has been released: that is no report's business.
    if (!blnReportShown && !fncIsEnding())
        Attempt([&] { subReport(strDescription, lngNumber, intLine, strProcedure); });
    subQuit();
}

void subMailErrorReport() {
    // A mail that is saved and not shown would be found by nobody.
    const WholeStep whole;
    const host::MailItem oui = AttemptOr([] { return ouaOutlook.get().CreateItem(0); }, host::Item());
    const QString strSubject = QStringLiteral("Error in %1 %2.%3.%4 (%5)")
                                   .arg(strProgramTitle)
                                   .arg(intVersionMajor)
                                   .arg(intVersionMinor)
                                   .arg(intVersionRevision)
                                   .arg(fncOSName());
    bool blnFailed = false;
    const auto subStep = [&](const auto &step) { blnFailed = Attempt(step).has_value() || blnFailed; };
    subStep([&] { oui.To(strSupportMailbox); });
    subStep([&] { oui.Subject(strSubject); });
    subStep([&] { oui.Body(strErrorReport); });
    subStep([&] { oui.Save(); });
    subStep([&] { oui.Display(); });
    if (blnFailed)
        window::msgBox("Failed to send error email using MS Outlook!", window::Buttons::OK, window::Icon::Critical,
                       strProgramTitle);
    subQuit();
}

QString fncOSName() {
    QString strName = QSysInfo::kernelType();
    if (!strName.isEmpty())
        strName[0] = strName.at(0).toUpper();
    return strName + " " + QSysInfo::kernelVersion().section(u'.', 0, 1);
}

/// The one failure report, which ends the process.
#pragma once

#include "platform/value/failure.h"
#include "platform/value/processlocal.h"

#include <QString>

#include <source_location>

/// The report being composed, also the body of the mail.
extern ProcessLocal<QString> strErrorReport;

/// Shows the report with the last step, offers a mail to the support mailbox and ends the process. Only the first
/// report of a process is shown; every call ends it.
///
/// \param strProcedure  the procedure whose handler this is.
/// \param where  a position in that procedure.
[[noreturn]] void subErrorHandler(const Failure &failure, const QString &strProcedure,
                                  std::source_location where = std::source_location::current());
[[noreturn]] void subErrorHandler(const QString &strDescription, qint32 lngNumber, qint32 intLine,
                                  const QString &strProcedure);

/// Puts the report into a mail to the support mailbox, saved and shown for the person to send, and ends the process.
[[noreturn]] void subMailErrorReport();

/// The system that the program runs on, with the first two parts of its version, such as "Linux 6.1".
QString fncOSName();

/// The last step, which is what a failure report shows, and the log.
#pragma once

#include "platform/value/processlocal.h"

#include <QString>

/// The step last announced, a sentence for the reader of a report.
extern ProcessLocal<QString> strLastStep;
/// Whether steps also go to the log. True from the start where ORVELLE_TRACE is 1.
extern ProcessLocal<bool> blnTrace;

/// Announces what is about to be done.
void subTrace(const QString &strText);
QString fncLastStep();

/// Adds one line to `TessmarkLog.txt` in the program folder: program title, moment, text, separated by tabs and closed
/// by a carriage return and a line feed. UTF-8. An empty text writes nothing; a failure to write is ignored.
void subLogLine(const QString &strText);

#include "orvelle/core/trace.h"

#include "orvelle/core/process.h"
#include "platform/scripting/path.h"
#include "platform/value/convert.h"

#include <QFile>

ProcessLocal<QString> strLastStep;
ProcessLocal<bool> blnTrace(qEnvironmentVariable("ORVELLE_TRACE") == QStringLiteral("1"));

void subTrace(const QString &strText) {
    strLastStep = strText;
    if (blnTrace)
        subLogLine(strText);
}

QString fncLastStep() { return strLastStep; }

void subLogLine(const QString &strText) {
    if (strText.isEmpty())
        return;
    QFile file(scripting::nativePath(fncProgramFolder() + QStringLiteral("\\TessmarkLog.txt")));
    // Unbuffered and appending: the line goes out in one piece, whatever another process writes.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        return;
    const QStringList strFields{strProgramTitle, formatDateTime(Clock::now()), strText};
    file.write((strFields.join(u'\t') + strLineEnd).toUtf8());
}

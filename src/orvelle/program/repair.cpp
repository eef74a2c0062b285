// What a start puts in order: items with forms of their own, and report files of earlier versions.

#include "orvelle/core/components.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/program/main.h"
#include "orvelle/ticket/ticket.h"

namespace {
/// In a folder with more items than this only the last one is looked at.
constexpr qint32 mostItems = 50;

void subRepair(const host::Item &oui) {
    const WholeStep whole;
    if (oui.MessageClass() == strTicketMessageClass) {
        subTrace("Looking for items without a ticket ID");
        return;
    }
    subTrace("Found a one-off form with subject line " + AttemptOr([&] { return oui.Subject(); }, QString()));
    oui.MessageClass(strTicketMessageClass);
    oui.Save();
}

void subDeleteFiles(const QString &strFolder, const QStringList &files) {
    if (!fsoFileSystem->FolderExists(strFolder))
        return;
    for (const QString &strFile : files) {
        if (fsoFileSystem->FileExists(strFolder + strFile))
            fsoFileSystem->DeleteFile(strFolder + strFile);
    }
}
} // namespace

void subRepairOneOffForms() {
    Attempt([] {
        const host::Items ois = oufTickets->Items();
        for (qint32 i = ois.Count(); i >= 1; --i) {
            Attempt([&] { subRepair(ois.Item(i)); });
            if (i > mostItems)
                break;
        }
    });
}

// The names are those that the files really bear: written by programs of another code page.
void subRemoveOldReportFiles() {
    subTrace("Removing old report files!");
    subDeleteFiles(fncProgramFolder() + "\\Reports2K\\Corvane\\",
                   {"Anv„ndarkategori Antal.txt", "Anv„ndarkategori Taxa.txt", "Anv„ndarkategori Tim.txt"});
    subDeleteFiles(fncProgramFolder() + "\\ReportsXP\\Corvane\\",
                   {"Ansvarig AVG Timmar ”ppen.txt", "Anv„ndarkategori Antal.txt",
                    "Anv„ndarkategori AVG Timmar ”ppen.txt", "Anv„ndarkategori Taxa.txt", "Anv„ndarkategori Tim.txt",
                    "Datum AVG Timmar ”ppen.txt", "Problemkategori AVG Timmar ”ppen.txt"});
}

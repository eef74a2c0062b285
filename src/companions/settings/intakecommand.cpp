#include "companions/settings/intakecommand.h"

#include "automation/remote.h"
#include "companions/settings/output.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/database/connection.h"
#include "orvelle/dialogs/dialogs.h"
#include "orvelle/mail/finish.h"
#include "orvelle/mail/intake.h"
#include "orvelle/reference/settings.h"
#include "orvelle/session/safeutils.h"
#include "orvelle/ticket/ticketnumbers.h"
#include "orvelle/ticketfolder/getsettings.h"
#include "orvelle/ticketfolder/ticketfolder.h"
#include "orvelle/toolbar/rootexplorer.h"
#include "platform/ado/jet/file.h"
#include "platform/safeobjects/safeobjects.h"
#include "platform/scripting/components.h"
#include "platform/scripting/path.h"
#include "platform/value/convert.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QThread>

namespace settings {

namespace {

using Kind = cLeftover::Kind;
using Remedy = cLeftover::Remedy;

struct Options {
    bool asJson = false;
    bool repair = false;
    /// Of work of which nobody can tell whether its program still runs; nothing to leave it.
    std::optional<int> minutes;
};

std::optional<Options> optionsFrom(const QStringList &arguments) {
    Options options;
    for (qsizetype at = 0; at < arguments.size(); ++at) {
        if (arguments[at] == "--json") {
            options.asJson = true;
        } else if (arguments[at] == "--repair") {
            options.repair = true;
        } else if (arguments[at] == "--older-than" && at + 1 < arguments.size()) {
            bool isNumber = false;
            options.minutes = arguments[++at].toInt(&isNumber);
            if (!isNumber || *options.minutes < 0)
                return std::nullopt;
        } else {
            return std::nullopt;
        }
    }
    return options.minutes && !options.repair ? std::nullopt : std::optional(options);
}

QString profileFolder() {
    const QString named = qEnvironmentVariable("ORVELLE_PROFILE");
    return named.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/orvelle/profile"
                           : named;
}

/// A run of the system's own modules against the running desk of the profile, without a window or a watch.
class DeskRun {
  public:
    DeskRun() {
        connect();
        findHelpdesk();
        if (fncUsesSubFolders()) {
            subMakeRootExplorer();
            objRootExplorer->subSetupSentORVL();
        }
    }

    /// Fails where the person can't send mail from here.
    static void requireClientTools() {
        if (Attempt([] { scripting::CreateObject("SafeTessmark.MAPIUtils"); }))
            throw Failure(failures::cannotCreateObject, "The client tools are not installed for this user, and without "
                                                        "them no mail can be read or sent. Run OrvelleClientTools.exe "
                                                        "once, and try again.");
        static_cast<void>(fncSetupSafeUtils());
    }

  private:
    /// Lets go of all that the run holds of the desk, also where its beginning fails.
    class Held {
      public:
        Held() = default;
        ~Held() {
            objRootExplorer = Ref<cRootExplorer>();
            static_cast<void>(Attempt([] { subCleanupSafeUtils(); }));
            subCloseConnection();
            reportTarget = Ref<ReportTarget>();
            objSettings = Ref<cSettings>();
            oufTickets = host::MAPIFolder();
            onsMAPI = host::NameSpace();
            ouaOutlook = host::Application();
        }
        Held(const Held &) = delete;
        Held &operator=(const Held &) = delete;
    };

    void connect() {
        const QString profile = profileFolder();
        if (Attempt([&] { m_client = automation::Client::connect(profile + "/desk.socket"); }))
            throw Failure(
                failures::cannotCreateObject,
                QString("The desk of the profile %1 does not run, and the mails are reached through it. Start "
                        "it with \"orvelle-desk --profile %1\", or name another profile in ORVELLE_PROFILE.")
                    .arg(profile));
        ouaOutlook = host::Application(m_client->root());
        onsMAPI = ouaOutlook->GetNamespace("MAPI");
        safeobjects::registerComponents([] { return onsMAPI->object(); });
    }

    static void findHelpdesk() {
        if (fncFindInstalledDatabase().isEmpty())
            throw Failure(failures::fileNotFound,
                          QString("There is no database in %1. Start orvelle once, which creates it.")
                              .arg(scripting::nativePath(fncProgramFolder())));
        subCreateSettings();
        subReadFolderFromRegistry();
        oufTickets = fncSavedFolder();
        if (oufTickets->isNothing())
            throw Failure(failures::notFound,
                          "This profile does not know the ticket folder yet, or it is gone. Let the "
                          "desk show the ticket folder and start orvelle once.");
        subGetSettings();
        // Work rows bear a phrase in the helpdesk's language.
        LoadLanguages(objSettings->CurrentSelectedLanguage);
    }

    // The client goes last: what is held is reached through it.
    std::unique_ptr<automation::Client> m_client;
    Held m_held;
};

bool isLeft(const cLeftover &leftover) { return leftover.remedy != Remedy::None; }

bool mayFinish(const cLeftover &leftover, const Options &options) {
    if (leftover.remedy == Remedy::Repair)
        return true;
    if (leftover.remedy != Remedy::RepairIfOld || !options.minutes || leftover.dteSince.isZero())
        return false;
    constexpr double minutesADay = 1440;
    return leftover.dteSince.days + *options.minutes / minutesADay <= Clock::now().days;
}

const char *remedyName(Remedy remedy) {
    switch (remedy) {
    case Remedy::Repair:
        return "repair";
    case Remedy::RepairIfOld:
        return "repair when old";
    case Remedy::Person:
        return "person";
    case Remedy::None:
        return "none";
    }
    return "";
}

QJsonObject jsonOf(const cLeftover &leftover, const cFinished *finished) {
    QJsonObject object{{"kind", fncKindName(leftover.kind)}, {"remedy", remedyName(leftover.remedy)},
                       {"text", leftover.strText},           {"folder", leftover.strFolder},
                       {"subject", leftover.strSubject},     {"ticket", leftover.strTicketID},
                       {"entryId", leftover.strEntryID},     {"client", leftover.strClient}};
    object.insert("since", leftover.dteSince.isZero() ? QJsonValue() : QJsonValue(leftover.dteSince.isoText()));
    if (finished) {
        object.insert("done", finished->blnDone);
        object.insert("result", finished->strText);
    }
    return object;
}

/// On one line, whatever a mail's subject holds.
QString shown(QString text) {
    for (QChar &each : text)
        each = each.isPrint() ? each : QChar(u' ');
    return text.simplified();
}

QString lineOf(const cLeftover &leftover) {
    QString line;
    if (!leftover.strFolder.isEmpty())
        line += leftover.strFolder + ": ";
    if (!leftover.strSubject.isEmpty())
        line += u'"' + leftover.strSubject.left(100) + "\" ";
    if (!leftover.strTicketID.isEmpty())
        line += "(ticket " + leftover.strTicketID.left(64) + ") ";
    return shown(line + "- " + leftover.strText) + ".\n";
}

/// Copies first, so that the mail that they belong to is found to have one; then mails, which finish the tickets.
QList<cLeftover> inOrder(QList<cLeftover> leftovers) {
    const auto rank = [](const cLeftover &each) { return each.kind == Kind::StrayCopy ? 0 : 1; };
    std::ranges::stable_sort(leftovers, {}, rank);
    return leftovers;
}

/// A program that was killed may have asked the desk for one thing more. The desk does it at once, so after a moment
/// it is done.
void letTheDeskFinish() {
    constexpr unsigned long moment = 1000;
    QThread::msleep(moment);
}

struct Repaired {
    QList<std::pair<cLeftover, cFinished>> all;
};

Repaired repair(const Options &options) {
    Repaired repaired;
    DeskRun::requireClientTools();
    if (const QString numbers = fncRaiseTicketNumbers(); !numbers.isEmpty())
        subAssistantMessage(ouaOutlook, numbers);
    const QList<cLeftover> found = fncAllLeftovers();
    if (std::ranges::any_of(found, [&](const cLeftover &each) { return mayFinish(each, options); }))
        letTheDeskFinish();
    for (const cLeftover &each : inOrder(found)) {
        if (mayFinish(each, options))
            repaired.all.append({each, fncFinish(each)});
    }
    if (!repaired.all.isEmpty())
        Attempt([] { subDeliverNow(); });
    return repaired;
}

void printText(const Options &options, const Repaired &repaired, const QList<cLeftover> &found) {
    QString text;
    for (const auto &[leftover, finished] : repaired.all)
        text += QString(finished.blnDone ? "Done: " : "Not done: ") + lineOf(leftover).chopped(1) + " Now " +
                shown(finished.strText) + ".\n";
    QString left;
    QString notes;
    for (const cLeftover &each : found)
        (isLeft(each) ? left : notes) += "  " + lineOf(each);
    if (!left.isEmpty())
        text += (options.repair ? "Still left:\n" : "Left behind:\n") + left;
    if (!notes.isEmpty())
        text += "To know:\n" + notes;
    if (left.isEmpty())
        text += "Nothing is left to be finished.\n";
    else if (std::ranges::any_of(found, [](const cLeftover &each) { return each.remedy == Remedy::Repair; }))
        text += "\"ORVELLESETTINGS.exe intake --repair\" finishes what can be finished.\n";
    if (std::ranges::any_of(found, [](const cLeftover &each) { return each.remedy == Remedy::RepairIfOld; }))
        text +=
            "Where nobody can tell whether a program still runs, look yourself; then \"--repair --older-than MINUTES\" "
            "finishes what is older.\n";
    print(text.toUtf8());
}

void printJson(const Repaired &repaired, const QList<cLeftover> &found) {
    QJsonArray finished;
    for (const auto &[leftover, outcome] : repaired.all)
        finished.append(jsonOf(leftover, &outcome));
    QJsonArray left;
    QJsonArray notes;
    for (const cLeftover &each : found)
        (isLeft(each) ? left : notes).append(jsonOf(each, nullptr));
    print(QJsonDocument(QJsonObject{{"repaired", finished}, {"left", left}, {"notes", notes}}).toJson());
}

} // namespace

std::optional<int> runIntake(const QStringList &arguments) {
    const std::optional<Options> options = optionsFrom(arguments);
    if (!options)
        return std::nullopt;
    const DeskRun run;
    const Repaired repaired = options->repair ? repair(*options) : Repaired();
    const QList<cLeftover> found = fncAllLeftovers();
    if (options->asJson)
        printJson(repaired, found);
    else
        printText(*options, repaired, found);
    if (std::ranges::any_of(found, isLeft))
        return leftoversRemain;
    // Only a person can tell a ticket that was deleted on purpose from one that was lost.
    const auto isGone = [](const cLeftover &each) { return each.kind == Kind::RowWithoutItem; };
    return std::ranges::any_of(found, isGone) ? ticketsAreGone : 0;
}

} // namespace settings

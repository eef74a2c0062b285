#include "support/helpdesk.h"

#include "desk/objects/mapifolder.h"
#include "desk/objects/session.h"
#include "desk/transport/delivery.h"
#include "desk/transport/mailrules.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/database/connection.h"
#include "orvelle/database/creation.h"
#include "orvelle/reference/settings.h"
#include "platform/ado/jet/engine.h"
#include "platform/registry/registry.h"
#include "platform/safeobjects/safeobjects.h"
#include "platform/scripting/components.h"
#include "platform/scripting/path.h"
#include "platform/value/convert.h"
#include "support/tables.h"

#include <QDir>
#include <QFile>

namespace support {

QByteArray Mail::bytes() const {
    const QString outer = "outer-boundary";
    const QString inner = "inner-boundary";
    QString all = "From: " + from + "\r\nTo: helpdesk@example.org\r\nDate: Tue, 05 Mar 2024 11:00:00 +0000\r\n";
    if (!subject.isEmpty())
        all += "Subject: " + subject + "\r\n";
    all += "MIME-Version: 1.0\r\nContent-Type: multipart/mixed; boundary=" + outer + "\r\n\r\n--" + outer + "\r\n";
    if (!html.isEmpty())
        all += "Content-Type: multipart/alternative; boundary=" + inner + "\r\n\r\n--" + inner + "\r\n";
    all += "Content-Type: text/plain; charset=utf-8\r\n\r\n" + text + "\r\n";
    if (!html.isEmpty())
        all += "--" + inner + "\r\nContent-Type: text/html; charset=utf-8\r\n\r\n" + html + "\r\n--" + inner + "--\r\n";
    for (const File &file : files) {
        all += "--" + outer + "\r\nContent-Type: application/octet-stream\r\nContent-Transfer-Encoding: base64\r\n" +
               "Content-Disposition: attachment; filename=\"" + file.name + "\"\r\n\r\n" +
               QString::fromLatin1(file.content.toBase64()) + "\r\n";
    }
    return (all + "--" + outer + "--\r\n").toUtf8();
}

Helpdesk::Helpdesk() {
    Region::set(QLocale(QLocale::English, QLocale::UnitedStates));
    Clock::set(DateTime{DateTime::fromDate(2024, 3, 5).days + 0.5});
    QDir(m_folder.path()).mkdir("program");
    QDir(m_folder.path()).mkdir("temp");
    writeForm();
    desk::DeskOptions options;
    options.profile = path("profile");
    options.user = "Alma Tester";
    m_desk = std::make_unique<desk::Desk>(options);
    // Most mails of a test are from one sender.
    desk::MailRules rules;
    rules.mostAnHour = 0;
    desk::saveMailRules(m_desk->session().profile(), rules);
    m_tickets = mapi().Folders("Public Folders").Folders().Add("Helpdesk", 6);
    m_tickets.WebViewURL("file:" + scripting::pathText(path("Orvelle.htm")));
    m_intake = mailbox().Folders().Add("Support", 6);
    m_explorer = app().Explorers().Add(m_tickets, 0);
    m_explorer.Display();
    makeDatabase();
}

Helpdesk::~Helpdesk() {
    m_copies.clear();
    m_client.reset();
    m_explorer = {};
    m_intake = {};
    m_tickets = {};
    m_desk.reset();
    Clock::release();
    Region::set(std::nullopt);
}

void Helpdesk::writeForm() const {
    QStringList fields;
    for (const char *name :
         {"Ticket ID", "Created by", "Custom Status", "Problem Type", "Problem category", "Responsible", "Caller name",
          "Caller email", "Caller comment", "Caller phone", "Caller category", "Ticket"})
        fields << QString("{\"name\": \"%1\", \"type\": \"text\", \"value\": \"\"}").arg(name);
    for (const char *name : {"Created at", "Date due"})
        fields << QString("{\"name\": \"%1\", \"type\": \"date\"}").arg(name);
    QFile file(path("OrvelleForm.fdm"));
    if (!file.open(QIODevice::WriteOnly))
        ADD_FAILURE() << "The form can't be written.";
    file.write(QString("{\"messageClass\": \"IPM.Post.HelpDesk.Ticket.8\", \"fields\": [" + fields.join(", ") + "]}")
                   .toUtf8());
}

QString Helpdesk::programFolder() const { return scripting::pathText(path("program")); }

void Helpdesk::withDatabase(const std::function<void()> &step) {
    ProgramCopy copy;
    const ProgramCopy::Scope scope(copy);
    ado::addJetEngine();
    strProgramFolderOverride = programFolder();
    registry::fileOverride = path("registry.ini");
    strDBPath = programFolder() + "\\";
    strDBFileName = "Orvelle.mdb";
    LoadLanguages(1);
    subCreateSettings();
    step();
    subCloseConnection();
    copy.clear();
}

void Helpdesk::makeDatabase() {
    withDatabase([] {
        if (!fncCreateAccessDB(strDBPath + strDBFileName))
            ADD_FAILURE() << "The database can't be made.";
        objSettings->EmailFolders->FromString("\\\\Mailbox - Alma Tester\\Support");
        objSettings->SaveSettings();
    });
}

void Helpdesk::setSetting(const QString &name, const QString &value) {
    withDatabase([&] {
        const auto table = fncReturnRecordset("tblOtherSettings", false, true, false);
        if (table->RecordCount() > 0)
            table->Find("strPropName = '" + name + "'");
        if (table->IsEOF()) {
            table->AddNew();
            table->Fields("strPropName").SetValue(name);
        }
        table->Fields("strPropValue").SetValue(value.isEmpty() ? " " : value);
        table->Update();
    });
}

QStringList Helpdesk::rows(const QString &query, const QStringList &columns) {
    QStringList texts;
    withDatabase([&] { texts = support::rows(query, columns, "|"); });
    return texts;
}

void Helpdesk::setClientTools(bool installed) {
    ProgramCopy copy;
    const ProgramCopy::Scope scope(copy);
    registry::fileOverride = path("registry.ini");
    for (const QString &progId : safeobjects::progIds())
        scripting::Components::setInstalled(progId, installed);
}

void Helpdesk::deliver(const Mail &mail, const host::MAPIFolder &folder) {
    const auto target = automation::exposedOf<desk::objects::MAPIFolder>(folder);
    const auto other = desk::Session::open(desk::Profile({.profile = path("profile")}));
    desk::Store &store = *other->storeOf(target->entryId());
    desk::deliver(*other, {&store, store.folder(target->id())}, mail.bytes());
    m_desk->lookAround();
}

host::Item Helpdesk::put(const host::MAPIFolder &folder, const QString &messageClass, const QString &subject) {
    const host::Item item = folder.Items().Add(messageClass);
    item.Subject(subject);
    item.Save();
    return item;
}

QStringList Helpdesk::subjects(const host::MAPIFolder &folder) {
    QStringList texts;
    const host::Items items = folder.Items();
    const qint32 count = items.Count();
    for (qint32 i = 1; i <= count; ++i)
        texts << items.Item(i).Subject();
    return texts;
}

QStringList Helpdesk::folderNames(const host::MAPIFolder &folder) {
    QStringList names;
    const host::Folders folders = folder.Folders();
    const qint32 count = folders.Count();
    for (qint32 i = 1; i <= count; ++i)
        names << folders.Item(i).Name();
    return names;
}

QString Helpdesk::property(const host::Item &item, const QString &name) {
    const host::UserProperty found = item.UserProperties().Find(name);
    return found ? toText(found.value()) : QString("(none)");
}

QList<QByteArray> Helpdesk::outgoing() const {
    QList<QByteArray> all;
    const QDir folder(path("profile/outgoing"));
    for (const QString &name : folder.entryList({"*.eml"}, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            all << file.readAll();
    }
    return all;
}

Counting::Log Helpdesk::countQuestions() {
    m_questions = std::make_shared<Counting::Questions>();
    return m_questions;
}

void Helpdesk::connectBySocket() {
    m_desk->listen();
    m_client = automation::Client::connect(m_desk->session().profile().socket());
}

Copy &Helpdesk::newCopy(const QString &command) {
    ProgramSetup setup;
    setup.strCommand = command;
    setup.host = [this] {
        if (!m_desk)
            throw Failure(failures::cannotCreateObject);
        const automation::ObjectPtr application = m_client ? m_client->root() : m_desk->application();
        return m_questions ? Counting::of(application, m_questions) : application;
    };
    setup.strProgramFolder = programFolder();
    setup.instanceFile = m_instanceFile;
    setup.ownLoop = m_ownLoop;
    Copy &copy = m_copies.emplace_back(std::move(setup));
    copy.in([&] {
        ado::addJetEngine();
        registry::fileOverride = path("registry.ini");
    });
    return copy;
}

Copy &Helpdesk::start(const QString &command) {
    Copy &copy = newCopy(command);
    copy.run.start();
    return copy;
}

} // namespace support

#include "whole/processes.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QThread>

namespace whole {
namespace {
constexpr int patience = 30000;
const QString programs = QStringLiteral(PROGRAMS "/");
} // namespace

Helpdesk::Helpdesk() {
    QDir(m_folder.path()).mkpath(QStringLiteral("program"));
    QFile::copy(QStringLiteral(HOME_FILES "/OrvelleForm.fdm"), path(QStringLiteral("program/OrvelleForm.fdm")));
    // A page that starts nothing: the tests start the program themselves.
    write("program/Orvelle.htm", "<html></html>");
    command({"folder", "add", ticketFolder, "--home-page", "file:" + path(QStringLiteral("program/Orvelle.htm"))});
    run(QStringLiteral("OrvelleClientTools.exe"), {});
    settings({"set", "EmailFolders", inbox});
    settings({"set", "ConvertedEmailSubject", "Helpdesk Ticket {[TICKETID]}"});
    settings({"set", "ConvertedEmailMessage", "Your mail [SUBJECT] is ticket [TICKETID]."});
}

Helpdesk::~Helpdesk() {
    for (const auto *each : {&m_orvelle, &m_desk}) {
        if (*each && (*each)->state() != QProcess::NotRunning) {
            (*each)->kill();
            (*each)->waitForFinished(patience);
        }
    }
}

std::unique_ptr<QProcess> Helpdesk::process(const QString &program, const QStringList &arguments) const {
    auto made = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("ORVELLE_PROFILE", path("profile"));
    environment.insert("ORVELLE_HOME", path("program"));
    environment.insert("ORVELLE_UNATTENDED", "1");
    made->setProcessEnvironment(environment);
    made->setProgram(programs + program);
    made->setArguments(arguments);
    return made;
}

void Helpdesk::run(const QString &program, const QStringList &arguments) {
    const auto started = process(program, arguments);
    started->start();
    ASSERT_TRUE(started->waitForFinished(patience)) << program.toStdString();
    ASSERT_EQ(started->exitCode(), 0) << program.toStdString() << ' ' << arguments.join(u' ').toStdString() << ": "
                                      << started->readAllStandardError().toStdString();
}

QByteArray Helpdesk::command(const QStringList &arguments) {
    const auto started = process("orvelle-desk", QStringList{"--user", "Alma Tester"} + arguments);
    started->start();
    EXPECT_TRUE(started->waitForFinished(patience));
    EXPECT_EQ(started->exitCode(), 0) << arguments.join(u' ').toStdString() << ": "
                                      << started->readAllStandardError().toStdString();
    return started->readAllStandardOutput();
}

void Helpdesk::startDesk() {
    m_desk = process("orvelle-desk", {"--user", "Alma Tester", "--open", ticketFolder});
    m_desk->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_desk->start();
    ASSERT_TRUE(m_desk->waitForReadyRead(patience));
}

void Helpdesk::startOrvelle(const QStringList &arguments) {
    m_orvelle = process("orvelle", arguments);
    QObject::connect(m_orvelle.get(), &QProcess::readyReadStandardError,
                     [this] { m_orvelleErrors += QString::fromUtf8(m_orvelle->readAllStandardError()); });
    m_orvelle->start();
    ASSERT_TRUE(m_orvelle->waitForStarted(patience));
}

void Helpdesk::killDesk() {
    m_desk->kill();
    ASSERT_TRUE(m_desk->waitForFinished(patience));
}

void Helpdesk::killOrvelle() {
    m_orvelle->kill();
    ASSERT_TRUE(m_orvelle->waitForFinished(patience));
}

void Helpdesk::endOrvelle() {
    m_orvelle->terminate();
    ASSERT_TRUE(m_orvelle->waitForFinished(patience));
}

void Helpdesk::endDesk() {
    m_desk->terminate();
    ASSERT_TRUE(m_desk->waitForFinished(patience));
}

QJsonArray Helpdesk::list(const QString &folder) {
    return QJsonDocument::fromJson(command({"list", folder, "--json"})).array();
}

QJsonObject Helpdesk::show(const QString &entryId) {
    return QJsonDocument::fromJson(command({"show", entryId, "--json"})).object();
}

void Helpdesk::settings(const QStringList &arguments) { run(QStringLiteral("ORVELLESETTINGS.exe"), arguments); }

void Helpdesk::deliver(const QStringList &files) { command(QStringList{"deliver"} + files); }

bool Helpdesk::folderExists(const QString &path) { return command({"folders"}).contains(path.toUtf8()); }

void Helpdesk::removeFlagItems() {
    for (const QJsonValue item : list(inbox)) {
        if (item["subject"].toString() == flagSubject)
            command({"delete", item["entryId"].toString()});
    }
}

QString Helpdesk::write(const QString &name, const QByteArray &bytes) const {
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return file.fileName();
}

bool Helpdesk::waitFor(const std::function<bool()> &condition, int milliseconds) {
    const QDeadlineTimer deadline(milliseconds);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(20);
    }
    return true;
}

QString Helpdesk::property(const QJsonObject &item, const QString &name) {
    for (const QJsonValue each : item["properties"].toArray()) {
        if (each["name"].toString() == name)
            return each["value"].toVariant().toString();
    }
    return {};
}

} // namespace whole

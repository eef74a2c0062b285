#include "whole/processes.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QThread>

namespace whole {
namespace {
constexpr int patience = 30000;
/// A command may deliver or list thousands of mails.
constexpr int commandPatience = 600000;
const QString programs = QStringLiteral(PROGRAMS "/");
} // namespace

Place::Place() { QDir(m_folder.path()).mkpath(QStringLiteral("program")); }

QString Place::write(const QString &name, const QByteArray &bytes) const {
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return file.fileName();
}

Station::Station(const Place &place, QString user, const QString &profile, const QString &publicFile)
    : m_user(std::move(user)), m_profile(place.path(profile)), m_programFolder(place.path("program")),
      m_options({"--user", m_user}) {
    if (!publicFile.isEmpty())
        m_options += {"--public", publicFile};
    command({"folders"});
    run("OrvelleClientTools.exe", {});
}

Station::~Station() {
    for (const auto *each : {&m_orvelle, &m_desk}) {
        if (*each && (*each)->state() != QProcess::NotRunning) {
            (*each)->kill();
            (*each)->waitForFinished(patience);
        }
    }
}

std::unique_ptr<QProcess> Station::process(const QString &program, const QStringList &arguments) const {
    auto made = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("ORVELLE_PROFILE", m_profile);
    environment.insert("ORVELLE_HOME", m_programFolder);
    environment.insert("ORVELLE_UNATTENDED", "1");
    made->setProcessEnvironment(environment);
    made->setProgram(programs + program);
    made->setArguments(arguments);
    return made;
}

QByteArray Station::run(const QString &program, const QStringList &arguments) {
    const auto started = process(program, arguments);
    started->start();
    EXPECT_TRUE(started->waitForFinished(commandPatience)) << program.toStdString();
    EXPECT_EQ(started->exitCode(), 0) << program.toStdString() << ' ' << arguments.join(u' ').toStdString() << ": "
                                      << started->readAllStandardError().toStdString();
    return started->readAllStandardOutput();
}

QByteArray Station::command(const QStringList &arguments) { return run("orvelle-desk", m_options + arguments); }

void Station::startDesk() {
    m_desk = process("orvelle-desk", m_options + QStringList{"--open", ticketFolder});
    m_desk->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_desk->start();
    ASSERT_TRUE(m_desk->waitForReadyRead(patience));
}

void Station::startOrvelle(const QStringList &arguments) {
    m_orvelleErrors.clear();
    m_orvelle = process("orvelle", arguments);
    QObject::connect(m_orvelle.get(), &QProcess::readyReadStandardError,
                     [this] { m_orvelleErrors += QString::fromUtf8(m_orvelle->readAllStandardError()); });
    m_orvelle->start();
    ASSERT_TRUE(m_orvelle->waitForStarted(patience));
}

void Station::killDesk() {
    m_desk->kill();
    ASSERT_TRUE(m_desk->waitForFinished(patience));
}

void Station::killOrvelle() {
    m_orvelle->kill();
    ASSERT_TRUE(m_orvelle->waitForFinished(patience));
}

void Station::endOrvelle() {
    m_orvelle->terminate();
    ASSERT_TRUE(m_orvelle->waitForFinished(patience));
}

void Station::endDesk() {
    m_desk->terminate();
    ASSERT_TRUE(m_desk->waitForFinished(patience));
}

QJsonArray Station::list(const QString &folder) {
    return QJsonDocument::fromJson(command({"list", folder, "--json"})).array();
}

int Station::count(const QString &folder) {
    const auto started = process("orvelle-desk", m_options + QStringList{"list", folder, "--count"});
    started->start();
    EXPECT_TRUE(started->waitForFinished(commandPatience));
    return started->exitCode() == 0 ? started->readAllStandardOutput().trimmed().toInt() : 0;
}

QJsonObject Station::show(const QString &entryId) {
    return QJsonDocument::fromJson(command({"show", entryId, "--json"})).object();
}

void Station::settings(const QStringList &arguments) { run("ORVELLESETTINGS.exe", arguments); }

QJsonObject Station::leftovers(const QStringList &options) {
    const auto started = process("ORVELLESETTINGS.exe", QStringList{"intake", "--json"} + options);
    started->start();
    EXPECT_TRUE(started->waitForFinished(commandPatience));
    const QJsonObject result = QJsonDocument::fromJson(started->readAllStandardOutput()).object();
    const QJsonArray notes = result["notes"].toArray();
    const bool isGone = std::ranges::any_of(
        notes, [](const auto &note) { return note.toObject()["kind"].toString() == "row without ticket"; });
    EXPECT_EQ(started->exitCode(), !result["left"].toArray().isEmpty() ? 3 : isGone ? 4 : 0);
    EXPECT_EQ(started->readAllStandardError().toStdString(), "");
    EXPECT_TRUE(result.contains("left"));
    return result;
}

void Station::deliver(const QStringList &files) { command(QStringList{"deliver"} + files); }

bool Station::folderExists(const QString &path) { return command({"folders"}).contains(path.toUtf8()); }

void Station::removeFlagItems(const QString &folder) {
    for (const QJsonValue item : list(folder)) {
        if (item["subject"].toString() == flagSubject)
            command({"delete", item["entryId"].toString()});
    }
}

Helpdesk::Helpdesk() : Station(*this, "Alma Tester", "profile") {
    QFile::copy(QStringLiteral(HOME_FILES "/OrvelleForm.fdm"), path(QStringLiteral("program/OrvelleForm.fdm")));
    // A page that starts nothing: the tests start the program themselves.
    write("program/Orvelle.htm", "<html></html>");
    command({"folder", "add", ticketFolder, "--home-page", "file:" + path(QStringLiteral("program/Orvelle.htm"))});
    settings({"set", "EmailFolders", inbox});
    settings({"set", "ConvertedEmailSubject", "Helpdesk Ticket {[TICKETID]}"});
    settings({"set", "ConvertedEmailMessage", "Your mail [SUBJECT] is ticket [TICKETID]."});
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

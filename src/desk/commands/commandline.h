/// The command line of orvelle-desk.
#pragma once

#include "desk/content/profile.h"

#include <QMap>
#include <QStringList>

#include <stdexcept>

namespace desk {

/// What was asked for is no command: exit status 2.
class UsageError : public std::runtime_error {
  public:
    explicit UsageError(const QString &text) : std::runtime_error(text.toStdString()) {}
};

struct CommandLine {
    /// "run", "deliver", "folders" and so on.
    QString command;
    QStringList arguments;
    DeskOptions desk;
    bool json = false;
    bool help = false;

    QString folder;
    QString homePage;
    QString open;
    QStringList columns;
    bool count = false;
    bool mail = false;
    /// The rules that are to be changed, by the names of their options.
    QMap<QString, QString> rules;
    bool replace = false;
    bool withoutPublic = false;
};

/// Reads the arguments behind the program's name. Fails with UsageError.
CommandLine parseCommandLine(const QStringList &arguments);

QString helpText();

} // namespace desk

/// The command line of orvelle-desk.
#pragma once

#include "desk/objects/profile.h"

#include <QStringList>

#include <stdexcept>

namespace desk {

/// What was asked for is no command: exit status 2.
class UsageError : public std::runtime_error {
  public:
    explicit UsageError(const QString &text) : std::runtime_error(text.toStdString()) {}
};

struct CommandLine {
    /// "run", "deliver", "folders", "folder add", "list" or "show".
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
};

/// Reads the arguments behind the program's name. Fails with UsageError.
CommandLine parseCommandLine(const QStringList &arguments);

QString helpText();

} // namespace desk

/// Home pages of folders that name a program.
#pragma once

#include <QString>

#include <optional>

namespace desk {

/// The program that a page names in `<meta name="start-program" content="NAME">`: an executable file of the page's own
/// folder. Nothing for a page that is no local file, names none, or names what lies elsewhere; `problem` then says what
/// is wrong with a name that it does give.
std::optional<QString> startProgramOf(const QString &homePageUrl, QString &problem);

/// Starts a program on its own, with the profile's folder in its environment and its output in "started.log" there.
bool startProgram(const QString &program, const QString &profileFolder);

} // namespace desk

/// Starting the machine's programs.
#pragma once

#include "platform/value/processlocal.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace launch {

/// Starts programs. Tests put their own in its place and see what would have been started.
class Launcher {
  public:
    virtual ~Launcher() = default;
    /// Starts a program on its own, without waiting. Fails when it can't be started.
    /// \param program  a machine's path, or a name to be searched for.
    virtual void start(const QString &program, const QStringList &arguments) = 0;
    /// Starts a program that hands something to another one and ends, such as `xdg-open` and `lp`. Fails as well when
    /// it ends within seconds and says that it could not; one that takes longer is left to itself.
    virtual void handOver(const QString &program, const QStringList &arguments) { start(program, arguments); }
};
/// The launcher of this copy; Nothing stands for the machine's own.
extern ProcessLocal<std::shared_ptr<Launcher>> launcher;
/// The one in force.
Launcher &currentLauncher();

} // namespace launch

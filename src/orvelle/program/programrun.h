/// One run of the program, from its entry to its end, in a copy of its own.
#pragma once

#include "automation/object.h"
#include "platform/value/filelock.h"
#include "platform/value/processlocal.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>

/// Where a run finds what is outside of it.
struct ProgramSetup {
    /// The command line.
    QString strCommand;
    /// Reaches the host's application object, or fails.
    std::function<automation::ObjectPtr()> host;
    /// A path text; empty for the rule of `fncProgramFolder`.
    QString strProgramFolder;
    /// The file that tells the run of other instances; empty for a run that has none beside it.
    QString instanceFile;
    /// Whether the caller runs an event loop when `start` is back; see `blnOwnLoop`.
    bool ownLoop = false;
    /// Whether the process has been told from outside to end; see `fncEndSignalled`.
    bool (*endSignalled)() = nullptr;
};

class ProgramRun {
  public:
    /// \param ended  called once when the run has ended: nothing of it runs any more.
    explicit ProgramRun(ProgramSetup setup, std::function<void()> ended = {});
    /// Ends the run.
    ~ProgramRun();
    ProgramRun(const ProgramRun &) = delete;
    ProgramRun &operator=(const ProgramRun &) = delete;

    /// Runs the program's entry; afterwards the run lives on events, or has ended.
    void start();
    [[nodiscard]] bool alive() const { return m_alive; }
    /// Ends an alive run in the orderly way: at once, or, from inside one of its steps, as soon as what is in hand is
    /// whole.
    void quit();
    /// Tells the run that the host's process has ended, which it reports and then ends.
    void hostGone();
    /// 0 after an orderly end; 1 after a failure report, or when no host was found.
    [[nodiscard]] int exitStatus() const { return m_exitStatus; }
    [[nodiscard]] ProgramCopy &copy() { return m_copy; }

  private:
    void prepare();
    void finish();

    ProgramSetup m_setup;
    std::function<void()> m_ended;
    /// Held for the life of the run; that is how another process knows of it.
    std::unique_ptr<FileLock> m_lock;
    bool m_alive = false;
    bool m_hostReached = false;
    int m_exitStatus = 0;
    ProgramCopy m_copy;
};

// What would have been started.
#pragma once

#include "platform/launch/launcher.h"
#include "platform/value/failure.h"

namespace support {

/// While it lives, programs of its copy are noted and not started.
class Launches {
  public:
    explicit Launches(ProgramCopy &copy = ProgramCopy::current())
        : m_copy(copy), m_recorder(std::make_shared<Recorder>()) {
        const ProgramCopy::Scope scope(m_copy);
        launch::launcher = m_recorder;
    }
    ~Launches() {
        const ProgramCopy::Scope scope(m_copy);
        launch::launcher = nullptr;
    }
    Launches(const Launches &) = delete;
    Launches &operator=(const Launches &) = delete;

    /// Each start as the program and its arguments with bars between them.
    [[nodiscard]] QStringList started() const { return m_recorder->started; }
    /// Further starts fail.
    void fail() { m_recorder->failing = true; }

  private:
    struct Recorder : launch::Launcher {
        void start(const QString &program, const QStringList &arguments) override {
            if (failing)
                throw Failure(failures::fileNotFound, QStringLiteral("It can't be started."));
            started.append((QStringList{program} + arguments).join(u'|'));
        }
        QStringList started;
        bool failing = false;
    };

    ProgramCopy &m_copy;
    std::shared_ptr<Recorder> m_recorder;
};

} // namespace support

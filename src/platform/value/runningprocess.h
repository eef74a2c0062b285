/// A process, named so that others can tell later whether it still runs.
#pragma once

#include <QString>

#include <optional>

/// Names a process of this machine or of another one. The name tells apart processes that were given the same number
/// one after the other, starts of the machine, and containers with numbers of their own.
class RunningProcess {
  public:
    enum class State {
        Running,
        /// It has ended, that is certain.
        Ended,
        /// It is, or was, on another machine or in another container: it can't be looked at from here.
        Unknown
    };

    /// This one.
    static const RunningProcess &own();
    /// Nothing for a text that is none of `toText`.
    static std::optional<RunningProcess> fromText(const QString &text);

    /// One word of plain letters, about 130 characters.
    [[nodiscard]] QString toText() const;
    [[nodiscard]] State state() const;
    /// The name of its machine, for people.
    [[nodiscard]] const QString &host() const { return m_host; }

  private:
    RunningProcess() = default;

    /// The machine's installation; empty where it has no name.
    QString m_machine;
    /// The machine's start.
    QString m_boot;
    /// Whose numbers of processes these are.
    QString m_namespace;
    qint64 m_number = 0;
    /// In the machine's ticks since its start.
    qint64 m_started = 0;
    QString m_host;
};

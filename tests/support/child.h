/// A child process of a test, which may be killed at any moment.
#pragma once

#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

/// Runs a function in a forked child that ends with the function.
///
/// REQUIRES: the parent has no store open and no thread running when it forks.
class Child {
  public:
    /// `run` may write lines to the file it is handed; its result is the exit status.
    explicit Child(const std::function<int(int output)> &run) {
        int ends[2];
        EXPECT_EQ(::pipe(ends), 0);
        m_process = ::fork();
        if (m_process == 0) {
            ::close(ends[0]);
            ::_exit(run(ends[1]));
        }
        ::close(ends[1]);
        m_input = ends[0];
    }
    ~Child() {
        kill();
        ::close(m_input);
    }
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

    /// Waits for the next byte that the child writes; 0 at the end.
    char next() {
        char byte = 0;
        return ::read(m_input, &byte, 1) == 1 ? byte : '\0';
    }
    /// All that it wrote, once it has ended.
    std::string rest() {
        std::string text;
        while (const char byte = next())
            text += byte;
        return text;
    }
    /// As `kill -9`.
    void kill() {
        if (m_process > 0)
            ::kill(m_process, SIGKILL);
        wait();
    }
    /// The exit status; -1 when it was killed.
    int wait() {
        if (m_process > 0)
            ::waitpid(std::exchange(m_process, 0), &m_status, 0);
        return WIFEXITED(m_status) ? WEXITSTATUS(m_status) : -1;
    }

  private:
    pid_t m_process = 0;
    int m_input = -1;
    int m_status = 0;
};

inline void report(int output, char byte) { static_cast<void>(::write(output, &byte, 1)); }

#include "platform/storage/progress.h"

#include <cstdio>
#include <unistd.h>

namespace storage {

ProgressLine::ProgressLine(QString what) : m_what(std::move(what)), m_isTerminal(::isatty(STDERR_FILENO) == 1) {
    m_since.start();
}

ProgressLine::~ProgressLine() {
    if (m_isBegun && m_isTerminal)
        std::fputc('\n', stderr);
}

void ProgressLine::tell(qint64 done, qint64 all) {
    constexpr qint64 everySecond = 1000;
    constexpr qint64 nowAndThen = 5000;
    constexpr qint64 megabyte = qint64{1024} * 1024;
    if (m_since.elapsed() < m_next)
        return;
    m_next = m_since.elapsed() + (m_isTerminal ? everySecond : nowAndThen);
    m_isBegun = true;
    std::fprintf(stderr, "%s%s: %lld of %lld MB%s", m_isTerminal ? "\r" : "", qUtf8Printable(m_what),
                 static_cast<long long>(done / megabyte), static_cast<long long>(all / megabyte),
                 m_isTerminal ? "" : "\n");
    std::fflush(stderr);
}

} // namespace storage

#include "platform/value/processlocal.h"

namespace {
thread_local ProgramCopy *entered = nullptr;
}

ProgramCopy::ProgramCopy() = default;

ProgramCopy::~ProgramCopy() {
    const Scope scope(*this);
    clear();
}

ProgramCopy &ProgramCopy::current() {
    static ProgramCopy own;
    return entered ? *entered : own;
}

void ProgramCopy::clear() {
    // A variable's end may use, and so make anew, another one: go on until none is left.
    while (!m_order.empty()) {
        const std::size_t index = m_order.back();
        m_order.pop_back();
        const std::shared_ptr<void> last = std::move(m_slots[index]);
    }
}

std::size_t ProgramCopy::newSlot() {
    static std::size_t count = 0;
    return count++;
}

std::shared_ptr<void> &ProgramCopy::slot(std::size_t index) {
    if (index >= m_slots.size())
        m_slots.resize(index + 1);
    return m_slots[index];
}

ProgramCopy::Scope::Scope(ProgramCopy &copy) : m_previous(entered) { entered = &copy; }

ProgramCopy::Scope::~Scope() { entered = m_previous; }

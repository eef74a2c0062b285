/// Process-wide variables and program copies.
///
/// The executable is one copy of the program. A test may run several copies in one process, so a variable that is
/// process-wide by its meaning is kept once per copy, and code that is entered from outside (an event, a timer) first
/// steps into the copy it belongs to.
#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

/// One running copy of the program: the holder of its process-wide variables.
class ProgramCopy {
  public:
    ProgramCopy();
    ~ProgramCopy();
    ProgramCopy(const ProgramCopy &) = delete;
    ProgramCopy &operator=(const ProgramCopy &) = delete;

    /// The copy that is running on this thread: the one last entered, or the process's own.
    static ProgramCopy &current();

    /// Drops every variable of the copy, the youngest first. They come back with their first values on next use.
    void clear();

    /// Steps into a copy for as long as it lives.
    class Scope {
      public:
        explicit Scope(ProgramCopy &copy);
        ~Scope();
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;

      private:
        ProgramCopy *m_previous;
    };

  private:
    template <class T>
    friend class ProcessLocal;

    static std::size_t newSlot();
    std::shared_ptr<void> &slot(std::size_t index);
    void born(std::size_t index) { m_order.push_back(index); }

    std::vector<std::shared_ptr<void>> m_slots;
    std::vector<std::size_t> m_order;
};

/// A process-wide variable: one T per program copy, made on first use with the given first value.
///
/// Invariant: objects of this type have static storage.
template <class T>
class ProcessLocal {
  public:
    explicit ProcessLocal(T first = T{}) : m_first(std::move(first)), m_index(ProgramCopy::newSlot()) {}
    ProcessLocal(const ProcessLocal &) = delete;
    ProcessLocal &operator=(const ProcessLocal &) = delete;

    [[nodiscard]] T &get() const {
        ProgramCopy &copy = ProgramCopy::current();
        std::shared_ptr<void> &slot = copy.slot(m_index);
        if (!slot) {
            slot = std::make_shared<T>(m_first);
            copy.born(m_index);
        }
        return *static_cast<T *>(slot.get());
    }
    T &operator*() const { return get(); }
    /// Through to what T points to when T is a reference, else to T itself.
    decltype(auto) operator->() const {
        if constexpr (std::is_pointer_v<T> || requires(T & value) { value.operator->(); })
            return (get());
        else
            return &get();
    }
    operator T &() const { return get(); }
    const T &operator=(T value) const { return get() = std::move(value); }

  private:
    T m_first;
    std::size_t m_index;
};

/// The checked pointer: every reference to an object goes through it, so that a forgotten test for Nothing is a
/// failure with a number and never a crash.
#pragma once

#include "platform/value/failure.h"

#include <memory>
#include <source_location>

/// A shared reference to a T, or Nothing. Using Nothing fails with 91.
template <class T>
class Ref {
  public:
    Ref() = default;
    Ref(std::nullptr_t) {}
    Ref(std::shared_ptr<T> object) : m_object(std::move(object)) {}
    template <class U>
    requires std::convertible_to<std::shared_ptr<U>, std::shared_ptr<T>> Ref(const Ref<U> &other)
        : m_object(other.shared()) {}

    template <class... Arguments>
    static Ref make(Arguments &&...arguments) {
        return Ref(std::make_shared<T>(std::forward<Arguments>(arguments)...));
    }

    [[nodiscard]] bool isNothing() const { return m_object == nullptr; }
    explicit operator bool() const { return m_object != nullptr; }

    T *operator->() const { return &get(); }
    T &operator*() const { return get(); }
    [[nodiscard]] T &get() const {
        if (!m_object)
            throw Failure(failures::objectNotSet);
        return *m_object;
    }
    [[nodiscard]] const std::shared_ptr<T> &shared() const { return m_object; }
    void reset() { m_object.reset(); }

    /// Identity: the same object, or both Nothing.
    friend bool operator==(const Ref &left, const Ref &right) { return left.m_object == right.m_object; }

  private:
    std::shared_ptr<T> m_object;
};

/// Failures: the one exception type of the system, its numbers, and the tolerant way of running a step.
#pragma once

#include <QString>

#include <concepts>
#include <exception>
#include <optional>
#include <source_location>

/// The failure numbers that code tells apart. Small ones are the runtime's, those from 0x80000000 on are the
/// automation numbers of the host and of the components, kept as signed 32-bit values.
namespace failures {
constexpr qint32 automation(quint32 number) { return static_cast<qint32>(number); }

constexpr qint32 invalidCall = 5;
constexpr qint32 overflow = 6;
constexpr qint32 outOfMemory = 7;
constexpr qint32 subscriptOutOfRange = 9;
constexpr qint32 divisionByZero = 11;
constexpr qint32 typeMismatch = 13;
constexpr qint32 outOfStack = 28;
constexpr qint32 fileNotFound = 53;
constexpr qint32 fileExists = 58;
constexpr qint32 diskFull = 61;
constexpr qint32 inputPastEnd = 62;
constexpr qint32 permissionDenied = 70;
constexpr qint32 pathNotFound = 76;
constexpr qint32 objectNotSet = 91;
constexpr qint32 invalidNull = 94;
constexpr qint32 objectRequired = 424;
constexpr qint32 cannotCreateObject = 429;
constexpr qint32 memberMissing = 438;
constexpr qint32 automationError = 440;
constexpr qint32 wrongNumberOfArguments = 450;
constexpr qint32 keyExists = 457;

constexpr qint32 unspecified = automation(0x80004005);  ///< a component refused; data access uses it for locks
constexpr qint32 catastrophic = automation(0x8000FFFF); ///< the host lost its hold on an item
constexpr qint32 itemChanged = automation(0x80040109);  ///< somebody else saved the item first
constexpr qint32 itemGone = automation(0x8004010A);     ///< the item no longer exists
constexpr qint32 notFound = automation(0x8004010F);     ///< no such folder, item or store
constexpr qint32 noDiskSpace = automation(0x80040114);  ///< the store could not be written: the disk is full
constexpr qint32 accessDenied = automation(0x80070005); ///< the store or the folder is read-only
constexpr qint32 callRejected = automation(0x80010001); ///< the peer refused the call
constexpr qint32 disconnected = automation(0x80010108); ///< the object was released or its owner has gone
constexpr qint32 peerGone = automation(0x800706BA);     ///< the peer's process has ended
constexpr qint32 peerStuck = automation(0x8001011F);    ///< the peer is alive and does not answer
} // namespace failures

/// A failure: a number and a description that a person can read. It is what a failing call throws, in one process and
/// across the automation protocol alike.
class Failure : public std::exception {
  public:
    /// The failure with the number's standard description, such as 91 "Object variable or With block variable not set".
    explicit Failure(qint32 number, std::source_location where = std::source_location::current());
    Failure(qint32 number, QString description, std::source_location where = std::source_location::current());

    [[nodiscard]] qint32 number() const { return m_number; }
    [[nodiscard]] const QString &description() const { return m_description; }
    /// Where it was thrown; for logs.
    [[nodiscard]] const std::source_location &where() const { return m_where; }
    [[nodiscard]] const char *what() const noexcept override;

    /// The standard description of a number; "Application-defined or object-defined error" for one that has none.
    static QString standardDescription(qint32 number);

  private:
    qint32 m_number;
    QString m_description;
    std::source_location m_where;
    mutable QByteArray m_what;
};

/// The tolerant style: runs a step that may fail for reasons known in advance and hands back the failure or none.
/// Only a `Failure` is taken; the end of the process passes through.
template <std::invocable Step>
std::optional<Failure> Attempt(Step &&step) {
    try {
        std::forward<Step>(step)();
        return std::nullopt;
    } catch (const Failure &failure) {
        return failure;
    }
}

/// The tolerant style for a step with a result: the step's result, or `otherwise` when it failed.
template <std::invocable Step, class Result>
std::invoke_result_t<Step> AttemptOr(Step &&step, Result &&otherwise) {
    try {
        return std::forward<Step>(step)();
    } catch (const Failure &) {
        return std::forward<Result>(otherwise);
    }
}

#include "platform/value/failure.h"

Failure::Failure(qint32 number, std::source_location where) : Failure(number, standardDescription(number), where) {}

Failure::Failure(qint32 number, QString description, std::source_location where)
    : m_number(number), m_description(std::move(description)), m_where(where) {}

const char *Failure::what() const noexcept {
    m_what = (QString::number(m_number) + ": " + m_description).toUtf8();
    return m_what.constData();
}

QString Failure::standardDescription(qint32 number) {
    switch (number) {
    case failures::invalidCall:
        return QStringLiteral("Invalid procedure call or argument");
    case failures::overflow:
        return QStringLiteral("Overflow");
    case failures::outOfMemory:
        return QStringLiteral("Out of memory");
    case failures::subscriptOutOfRange:
        return QStringLiteral("Subscript out of range");
    case failures::divisionByZero:
        return QStringLiteral("Division by zero");
    case failures::typeMismatch:
        return QStringLiteral("Type mismatch");
    case failures::outOfStack:
        return QStringLiteral("Out of stack space");
    case failures::fileNotFound:
        return QStringLiteral("File not found");
    case failures::fileExists:
        return QStringLiteral("File already exists");
    case failures::diskFull:
        return QStringLiteral("Disk full");
    case failures::inputPastEnd:
        return QStringLiteral("Input past end of file");
    case failures::permissionDenied:
        return QStringLiteral("Permission denied");
    case failures::pathNotFound:
        return QStringLiteral("Path not found");
    case failures::objectNotSet:
        return QStringLiteral("Object variable or With block variable not set");
    case failures::invalidNull:
        return QStringLiteral("Invalid use of Null");
    case failures::objectRequired:
        return QStringLiteral("Object required");
    case failures::cannotCreateObject:
        return QStringLiteral("Component can't create object");
    case failures::memberMissing:
        return QStringLiteral("Object doesn't support this property or method");
    case failures::automationError:
        return QStringLiteral("Automation error");
    case failures::wrongNumberOfArguments:
        return QStringLiteral("Wrong number of arguments or invalid property assignment");
    case failures::keyExists:
        return QStringLiteral("This key is already associated with an element of this collection");
    case failures::unspecified:
        return QStringLiteral("Unspecified error");
    case failures::catastrophic:
        return QStringLiteral("Catastrophic failure");
    case failures::itemChanged:
        return QStringLiteral(
            "The item was changed by somebody else after it was opened. Open it again to see the change.");
    case failures::itemGone:
        return QStringLiteral("The item has been moved or deleted.");
    case failures::notFound:
        return QStringLiteral("The object could not be found.");
    case failures::noDiskSpace:
        return QStringLiteral("There is no space left to save the item. Free some space on the disk and try again.");
    case failures::accessDenied:
        return QStringLiteral("You don't have the permission to do this.");
    case failures::callRejected:
        return QStringLiteral("The call was rejected by the callee.");
    case failures::disconnected:
        return QStringLiteral("The object has been released or its program has ended.");
    case failures::peerGone:
        return QStringLiteral("The program at the other end has ended.");
    case failures::peerStuck:
        return QStringLiteral("The program at the other end is running but does not answer.");
    default:
        return QStringLiteral("Application-defined or object-defined error");
    }
}

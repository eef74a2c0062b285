#include "platform/scripting/diskfailure.h"

#include "platform/scripting/path.h"

#include <cerrno>

namespace scripting {

namespace {

qint32 numberOf(int error, qint32 noEntry) {
    switch (error) {
    case ENOENT:
        return noEntry;
    case ENOTDIR:
    case ENAMETOOLONG:
        return failures::pathNotFound;
    case EEXIST:
        return failures::fileExists;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return failures::diskFull;
    default:
        return failures::permissionDenied;
    }
}

} // namespace

Failure diskFailure(int error, const QString &action, const QString &path, qint32 noEntry) {
    const qint32 number = numberOf(error, noEntry);
    return Failure(number,
                   QStringLiteral("%1: can't %2 %3 (%4).")
                       .arg(Failure::standardDescription(number), action, pathText(path), qt_error_string(error)));
}

} // namespace scripting

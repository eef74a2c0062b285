#include "platform/storage/seal.h"

#include "platform/storage/durable.h"

#include <QCryptographicHash>
#include <QFile>
#include <QRegularExpression>

#include <cerrno>
#include <fcntl.h>

namespace storage {

namespace {

constexpr qint64 portion = qint64{1024} * 1024;
const QString lastLine = QStringLiteral("# end");

/// Hands over the file's bytes from its beginning to its end.
void readThrough(const QString &path, const std::function<void(const QByteArray &, qint64)> &take) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) || file.isSequential())
        throw Failure(failures::accessDenied, QStringLiteral("%1 can't be read: %2.").arg(path, file.errorString()));
    const qint64 all = file.size();
    for (QByteArray bytes = file.read(portion); !bytes.isEmpty(); bytes = file.read(portion))
        take(bytes, all);
    if (file.error() != QFile::NoError)
        throw Failure(failures::unspecified, QStringLiteral("%1 can't be read: %2.").arg(path, file.errorString()));
}

} // namespace

QByteArray sumOf(const QString &path) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    readThrough(path, [&](const QByteArray &bytes, qint64) { hash.addData(bytes); });
    return hash.result().toHex();
}

QByteArray copyWithSum(const QString &from, const QString &to, const Progress &progress) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    QFile target(to);
    if (!target.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        throw Failure(failures::accessDenied, QStringLiteral("%1 can't be written: %2.").arg(to, target.errorString()));
    qint64 done = 0;
    readThrough(from, [&](const QByteArray &bytes, qint64 all) {
        for (qint64 written = 0; written < bytes.size();) {
            const qint64 count = target.write(bytes.constData() + written, bytes.size() - written);
            if (count <= 0)
                throw fileFailure(target.error() == QFile::ResourceError ? ENOSPC : errno, to,
                                  QStringLiteral("can't be written"));
            written += count;
        }
        hash.addData(bytes);
        done += bytes.size();
        if (progress)
            progress(done, all);
    });
    return hash.result().toHex();
}

QByteArray writtenSums(const QString &title, const Sums &sums) {
    QByteArray text = "# " + title.toUtf8() + '\n';
    for (auto sum = sums.begin(); sum != sums.end(); ++sum)
        text += sum.value() + "  " + sum.key().toUtf8() + '\n';
    return text + lastLine.toUtf8() + '\n';
}

Sums readSums(const QByteArray &text, const QString &title, const QString &path) {
    const auto refuse = [&path](const QString &problem) {
        throw Failure(failures::unspecified,
                      QStringLiteral("%1 is damaged or belongs to no backup of this kind: %2.").arg(path, problem));
    };
    QStringList lines = QString::fromUtf8(text).split(u'\n');
    if (!lines.takeFirst().startsWith(QStringLiteral("# ") + title))
        refuse(QStringLiteral("its first line is another one"));
    if (lines.size() < 2 || !lines.takeLast().isEmpty() || lines.takeLast() != lastLine)
        refuse(QStringLiteral("its last line is missing"));
    static const QRegularExpression form(QStringLiteral("^([0-9a-f]{64})  ([^/].*)$"));
    Sums sums;
    for (const QString &line : std::as_const(lines)) {
        const auto match = form.match(line);
        const QString name = match.captured(2);
        if (!match.hasMatch() || name.split(u'/').contains(QStringLiteral("..")) || sums.contains(name))
            refuse(QStringLiteral("it has the line \"%1\"").arg(line.left(100)));
        sums.insert(name, match.captured(1).toLatin1());
    }
    return sums;
}

} // namespace storage

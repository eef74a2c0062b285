/// File names as texts that lose nothing.
///
/// A file name is any bytes; most, but not all, are UTF-8. A byte that is none of UTF-8 becomes a surrogate without its
/// other half, U+DC80 for 0x80 and so on, which no UTF-8 can hold. Such a text may be shown (as a replacement
/// character) and compared; to open the file, its bytes have to be asked for.
#pragma once

#include <QByteArray>
#include <QString>

QString pathFromBytes(const QByteArray &bytes);
QByteArray bytesOfPath(const QString &path);

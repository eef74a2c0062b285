#include "wallog.h"

#include <QFile>
#include <QtEndian>

// The log of the library's database files: a header of 32 bytes with the page size at 8 and the salts at 16, then
// frames of 24 bytes and a page each. A frame carries its log's salts at 8, and at 4 the size of the database when it
// ends a commit, else 0.

std::vector<int> WalReader::commits() {
    constexpr qint64 headerSize = 32;
    constexpr qint64 frameHeaderSize = 24;
    QFile log(m_file);
    if (!log.open(QIODevice::ReadOnly))
        return {};
    const QByteArray header = log.read(headerSize);
    if (header.size() < headerSize)
        return {};
    const auto pageSize = qFromBigEndian<quint32>(header.constData() + 8);
    const QByteArray salts = header.mid(16, 8);
    if (salts != m_salts) {
        m_salts = salts;
        m_frames = 0;
    }
    std::vector<int> sizes;
    int pages = 0;
    qint64 complete = m_frames;
    for (qint64 frame = m_frames;; ++frame) {
        log.seek(headerSize + frame * (frameHeaderSize + pageSize));
        const QByteArray frameHeader = log.read(frameHeaderSize);
        if (frameHeader.size() < frameHeaderSize || frameHeader.mid(8, 8) != m_salts)
            break;
        ++pages;
        if (qFromBigEndian<quint32>(frameHeader.constData() + 4) != 0) {
            sizes.push_back(pages);
            pages = 0;
            complete = frame + 1;
        }
    }
    m_frames = complete;
    return sizes;
}

#include "whole/mails.h"

#include <QCryptographicHash>
#include <QJsonArray>

namespace whole {
namespace {
QByteArray attachmentOf(int number, int index) {
    return QByteArray("part ") + QByteArray::number(number) + '/' + QByteArray::number(index) +
           QByteArray(number * 37 % 30000, static_cast<char>('a' + index));
}
} // namespace

int numberFrom(const char *variable, int otherwise) {
    bool given = false;
    const int number = qEnvironmentVariableIntValue(variable, &given);
    return given ? number : otherwise;
}

QString subjectOf(int number) { return QStringLiteral("Report %1").arg(number, 4, 10, QLatin1Char('0')); }

int attachmentsOf(int number) { return number % 3; }

QByteArray mailOf(int number) {
    QByteArray text = "From: Cal Caller <cal" + QByteArray::number(number) +
                      "@example.org>\r\nTo: helpdesk@orvelle.example\r\nSubject: " + subjectOf(number).toUtf8() +
                      "\r\nMIME-Version: 1.0\r\nContent-Type: multipart/mixed; boundary=b\r\n\r\n--b\r\n"
                      "Content-Type: text/plain\r\n\r\nIt is broken.\r\n";
    for (int index = 0; index < attachmentsOf(number); ++index) {
        text += "--b\r\nContent-Type: application/octet-stream\r\nContent-Transfer-Encoding: base64\r\n"
                "Content-Disposition: attachment; filename=\"file" +
                QByteArray::number(index) + ".bin\"\r\n\r\n" + attachmentOf(number, index).toBase64() + "\r\n";
    }
    return text + "--b--\r\n";
}

QStringList hashesOf(int number) {
    QStringList hashes;
    for (int index = 0; index < attachmentsOf(number); ++index)
        hashes += QString::fromLatin1(
            QCryptographicHash::hash(attachmentOf(number, index), QCryptographicHash::Sha256).toHex());
    return hashes;
}

QStringList hashesOf(const QJsonObject &item) {
    QStringList hashes;
    for (const QJsonValue attachment : item["attachments"].toArray())
        hashes += attachment["sha256"].toString();
    return hashes;
}

} // namespace whole

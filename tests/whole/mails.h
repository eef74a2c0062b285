// Mails by number, each with a subject, a text and attachments of its own, so that what became of it can be told.
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QStringList>

namespace whole {

QString subjectOf(int number);
QByteArray mailOf(int number);
/// As many as the number's rest by 3.
int attachmentsOf(int number);
/// Of its attachments, in their order.
QStringList hashesOf(int number);
QStringList hashesOf(const QJsonObject &item);

/// A number from the environment, for a run that is longer than the usual one.
int numberFrom(const char *variable, int otherwise);

} // namespace whole

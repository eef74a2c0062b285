/// Opening links for the person.
#pragma once

#include <QString>

/// As `subOpenURL`, with a message when it fails.
void subOpenLink(const QString &strURL);

/// What is told when something can't be saved: the reason, and not once a mail.
#pragma once

#include "platform/value/failure.h"

#include <QString>

/// What could not be saved. A disk that is full stops several kinds of saving, and each is told once.
enum class Saving { Claim, Item, Row };

/// While it lives, a reason that was told is not told again until such a saving has worked: the intake meets the same
/// full disk with every mail.
class TellOnce {
  public:
    TellOnce();
    ~TellOnce();
    TellOnce(const TellOnce &) = delete;
    TellOnce &operator=(const TellOnce &) = delete;
};

/// Shows the message with the reason in a line of its own. The failure's sentence tells a full disk, a read-only file,
/// a missing right and a locked file apart and says what to do.
void subTellSaveTrouble(Saving saving, const QString &strMessage, const Failure &failure);

/// Such a saving has worked: its next trouble is a new one.
void subSaveWorked(Saving saving);

/// Finishing what a client left behind, by the intake's own steps.
///
/// Each finding is first taken over by a save that only one can win; a client that dies here leaves it as a leftover
/// of its own. So it may be done beside running clients, by several at once, and again.
#pragma once

#include "orvelle/mail/leftover.h"

struct cFinished {
    bool blnDone = false;
    /// A sentence for people: what was done, or why it was not.
    QString strText;
};

/// REQUIRES: a finding of `fncAllLeftovers` with the remedy `Repair`, or `RepairIfOld` whose client nobody needs to
/// wait for.
cFinished fncFinish(const cLeftover &leftover);

/// Whether a text looks like one.
#pragma once

#include <QStringView>

namespace desk {

/// How much the characters beyond ASCII look as if somebody had meant them, at most 1. What speaks against it is what
/// bytes read in the wrong character set show: letters of several alphabets in one word, a capital behind a small
/// letter, signs inside words, words of accented letters alone, lone ideographs, marks without their letter, control
/// characters. 1 for plain ASCII.
double plausibility(QStringView text);

} // namespace desk

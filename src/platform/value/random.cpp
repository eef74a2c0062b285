#include "platform/value/random.h"

namespace {
QRandomGenerator &generator() {
    static QRandomGenerator random = QRandomGenerator::securelySeeded();
    return random;
}
} // namespace

double Random::next() { return generator().generateDouble(); }
void Random::seed(quint32 seed) { generator().seed(seed); }

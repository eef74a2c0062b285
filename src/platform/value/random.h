/// The one generator of random numbers. Tests seed it.
#pragma once

#include <QRandomGenerator>

/// The generator of the process, seeded from the system until a test seeds it.
class Random {
  public:
    /// A number from 0 up to but not including 1.
    static double next();
    /// From here on the numbers follow from the seed. REQUIRES: called by tests only.
    static void seed(quint32 seed);
};

// Rnd.cpp: the process-wide generator and the free Rnd/Randomize on it.
#include "core/Rnd.h"

namespace orvex {

Generator& ProcessGenerator() {
    static Generator generator;
    return generator;
}

float Rnd() {
    return ProcessGenerator().Rnd();
}
float Rnd(float n) {
    return ProcessGenerator().Rnd(n);
}
void Randomize(double seed) {
    ProcessGenerator().Randomize(seed);
}

}  // namespace orvex

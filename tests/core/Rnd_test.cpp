// Rnd_test.cpp: the generator against the classic run-time's published outputs.
#include "core/Rnd.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

TEST(Generator, FirstValuesFromTheInitialState) {
    Generator g;
    const double expected[] = {0.7055475, 0.533424, 0.5795186, 0.2895625, 0.301948};
    for (double value : expected)
        EXPECT_NEAR(g.Rnd(), value, 5e-8);
}

TEST(Generator, NegativeArgumentRestartsFromItselfAlone) {
    Generator fresh;
    Generator used;
    for (int i = 0; i < 37; ++i)
        used.Rnd();
    EXPECT_NEAR(fresh.Rnd(-1.0f), 0.224007, 5e-7);
    EXPECT_EQ(used.Rnd(-1.0f), fresh.Value());
    // The restart is followed by the ordinary sequence.
    EXPECT_EQ(used.Rnd(), fresh.Rnd(1.0f));
}

TEST(Generator, ZeroRepeatsTheLastValueWhichIsTheStateFraction) {
    Generator g;
    const float last = g.Rnd();
    EXPECT_EQ(g.Rnd(0.0f), last);
    EXPECT_EQ(g.Rnd(-0.0f), last);
    EXPECT_NE(g.Rnd(), last);
    Generator top(0xFFFFFF);  // the value is the exact state fraction
    EXPECT_EQ(top.Value(), 16777215.0f / 16777216.0f);
    EXPECT_LT(top.Value(), 1.0f);
}

TEST(Generator, RecurrenceMatchesItsSubtractiveForm) {
    // (0xFFC39EC3 - x * 0x2BC03) mod 2^24 is the same recurrence written another way.
    for (std::uint32_t x : {0u, 1u, 0x50000u, 0x7FFFFFu, 0xFFFFFFu, 0x123456u}) {
        Generator g(x);
        EXPECT_EQ(g.Advance(), (0xFFC39EC3u - x * 0x2BC03u) & 0xFFFFFFu) << x;
    }
}

TEST(Generator, RandomizeKeepsOnlyTheLowByte) {
    Generator g(0xABCDEF);
    g.Randomize(0.0);
    EXPECT_EQ(g.state(), 0xEFu);
    g.Randomize(1.0);  // upper half 0x3FF00000
    EXPECT_EQ(g.state(), 0x3FF0EFu);
    g.Randomize(-2.5);  // upper half 0xC0040000: (0 << 8) ^ 0xC00400
    EXPECT_EQ(g.state(), 0xC004EFu);
    g.Randomize(std::bit_cast<double>(0x12345678'00000000ull));
    EXPECT_EQ(g.state(), ((0x5678u << 8) ^ 0x123400u) | 0xEFu);
}

TEST(ProcessGenerator, FreeFunctionsShareOneInstance) {
    Randomize(3.0);
    const std::uint32_t seeded = ProcessGenerator().state();
    const float first = Rnd();
    Generator copy(seeded);
    EXPECT_EQ(first, copy.Rnd());
    EXPECT_EQ(Rnd(0.0f), first);
    EXPECT_EQ(Rnd(2.0f), copy.Rnd());
}

}  // namespace
}  // namespace orvex

#include <gtest/gtest.h>

TEST(PosixPlatform, Placeholder) { SUCCEED(); }

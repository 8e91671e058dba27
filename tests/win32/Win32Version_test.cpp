#include <gtest/gtest.h>

TEST(Win32Platform, Placeholder) { SUCCEED(); }

#include <gtest/gtest.h>

TEST(CalcCommand, Placeholder) { SUCCEED(); }

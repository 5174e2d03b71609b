#include <gtest/gtest.h>
TEST(Cli, Placeholder) {}

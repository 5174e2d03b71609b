#include "raw/classify.h"
#include <gtest/gtest.h>
TEST(Classify, Placeholder) {}

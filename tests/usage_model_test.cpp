#include "app/model/usage_model.hpp"

#include <gtest/gtest.h>
TEST(UsageModel, x) {}

// A test with a temporary folder of its own, removed with everything in it
// when the test ends.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

class TempDirTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char dir_template[] = "/tmp/toolbase-workflow-XXXXXX";
    ASSERT_NE(mkdtemp(dir_template), nullptr);
    dir_ = dir_template;
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }

  std::string dir_;
};

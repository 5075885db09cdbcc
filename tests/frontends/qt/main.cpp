// Runs the window's tests without a screen.
#include <gtest/gtest.h>

#include "qt/application.h"

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  ::testing::InitGoogleTest(&argc, argv);
  const korvex::qt::Application application(argc, argv);
  return RUN_ALL_TESTS();
}

#include <gtest/gtest.h>

#include <QApplication>

// The widgets under test need the toolkit's application object on the test server; listing the
// tests (at build time, without a server) needs none.
int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();
  QApplication app(argc, argv);
  return RUN_ALL_TESTS();
}

// The main of the X11 tests: each run gets an Xvfb of its own, and a
// QApplication on it, before the first test and until the last.
#include <gtest/gtest.h>

#include <QApplication>
#include <cstdlib>
#include <memory>

#include "tests/capture/temp_folder.h"
#include "tests/capture/x11_session.h"

namespace felthawk {
namespace {

class X11Environment : public ::testing::Environment {
  public:
    X11Environment(int argc, char** argv) : argc_(argc), argv_(argv) {}

    void SetUp() override {
        std::string error;
        ASSERT_TRUE(server_.Start(error)) << error;
        ::setenv("DISPLAY", server_.Display().c_str(), 1);
        ::setenv("QT_QPA_PLATFORM", "xcb", 1);
        // Settings and per-user files of the program stay inside the test.
        ::setenv("XDG_CONFIG_HOME", home_.path().c_str(), 1);
        ::setenv("XDG_DATA_HOME", home_.path().c_str(), 1);
        app_ = std::make_unique<QApplication>(argc_, argv_);
    }
    void TearDown() override { app_.reset(); }

  private:
    int argc_;
    char** argv_;
    XvfbServer server_;
    TempFolder home_;
    std::unique_ptr<QApplication> app_;
};

}  // namespace
}  // namespace felthawk

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::AddGlobalTestEnvironment(new felthawk::X11Environment(argc, argv));
    return RUN_ALL_TESTS();
}

// Every mail test runs inside one QApplication (offscreen, set by CTest),
// made before the first test and kept to the end.
#include <QApplication>

#include <gtest/gtest.h>

namespace {

class ApplicationEnvironment : public ::testing::Environment {
  public:
    void SetUp() override {
        static int argc = 1;
        static char name[] = "mail_tests";
        static char* argv[] = {name, nullptr};
        application_ = std::make_unique<QApplication>(argc, argv);
    }
    void TearDown() override { application_.reset(); }

  private:
    std::unique_ptr<QApplication> application_;
};

[[maybe_unused]] ::testing::Environment* const kEnvironment =
    ::testing::AddGlobalTestEnvironment(new ApplicationEnvironment);

}  // namespace

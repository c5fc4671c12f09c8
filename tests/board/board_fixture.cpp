#include <QApplication>
#include <QTemporaryDir>

#include "tests/board/board_fixture.h"

// Settings go to a temporary folder, set before the application starts.
int main(int argc, char* argv[]) {
    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

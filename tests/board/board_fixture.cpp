#include "tests/board/board_fixture.h"

#include <QApplication>
#include <QLabel>
#include <QTemporaryDir>

namespace felthawk::testing {

QString BoardTest::Text(const char* name, int index) const {
    for (QLabel* label : form->findChildren<QLabel*>(QString::fromLatin1(name))) {
        if (index < 0 || label->property("index").toInt() == index) return label->text();
    }
    ADD_FAILURE() << "no label " << name << "(" << index << ")";
    return QString();
}

}  // namespace felthawk::testing

// The settings go to a folder of our own, made before the application reads
// where the settings live.
int main(int argc, char* argv[]) {
    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
    // Listing the tests runs this too, without the test's environment.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

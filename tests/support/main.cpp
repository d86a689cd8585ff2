#include <QApplication>
#include <QTemporaryFile>
#include <gtest/gtest.h>

namespace {
constexpr char TWO_SCREENS[] = R"({"screens":[
    {"name":"left","x":0,"y":0,"width":800,"height":800,"logicalDpi":96,"logicalBaseDpi":96,"dpr":1},
    {"name":"right","x":800,"y":0,"width":800,"height":800,"logicalDpi":96,"logicalBaseDpi":96,"dpr":1}]})";
}

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    QTemporaryFile screens;
    if (!screens.open() || screens.write(TWO_SCREENS) < 0 || !screens.flush())
        return 1;
    // Needs no display. The programs that the tests start may have one.
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screens.fileName().toLocal8Bit());
    const QApplication app(argc, argv);
    qunsetenv("QT_QPA_PLATFORM");
    return RUN_ALL_TESTS();
}

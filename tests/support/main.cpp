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
    // As an argument, so that no display is needed and the environment stays as it is.
    char program[] = "korvel_tests";
    char platform[] = "-platform";
    QByteArray offscreen = "offscreen:configfile=" + screens.fileName().toLocal8Bit();
    char *arguments[] = {program, platform, offscreen.data(), nullptr};
    int count = 3;
    const QApplication app(count, arguments);
    return RUN_ALL_TESTS();
}

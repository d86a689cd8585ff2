#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    // As an argument, so that no display is needed and the environment stays as it is.
    char program[] = "korvel_unit_tests";
    char platform[] = "-platform";
    char offscreen[] = "offscreen";
    char *arguments[] = {program, platform, offscreen, nullptr};
    int count = 3;
    const QApplication app(count, arguments);
    return RUN_ALL_TESTS();
}

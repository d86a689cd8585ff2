#include "ui/widgets/picture.h"

#include <gtest/gtest.h>

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    // The smallest screen that people still have.
    const korvel::PictureApplication app(std::max(1, qEnvironmentVariableIntValue("KORVEL_GALLERY_SCALE")),
                                         {1280, 720});
    return RUN_ALL_TESTS();
}

#include "soak/seed.h"

#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

namespace {
quint32 seed = 0;
}

quint32 korvel::test::soakSeed() { return seed; }

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s SEED\n", argv[0]);
        return 64;
    }
    seed = static_cast<quint32>(std::strtoul(argv[1], nullptr, 10));
    const QCoreApplication app(argc, argv);
    return RUN_ALL_TESTS();
}

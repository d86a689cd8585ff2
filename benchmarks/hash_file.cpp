// korvel-hash FILE prints the digest of a file, computed as an update does before it installs a package.

#include "exchange/sha256.h"

#include <cstdio>

int main(int argc, char **argv) {
    const auto digest = argc == 2 ? korvel::sha256File(QString::fromLocal8Bit(argv[1])) : std::nullopt;
    if (!digest)
        return 1;
    std::printf("%s\n", qPrintable(*digest));
    return 0;
}

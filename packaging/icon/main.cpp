// Writes the bundle's icon to the file named on the command line. Run by the build.

#include "icon/icon_set.h"

#include <QSaveFile>
#include <cstdio>

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fputs("usage: korvel-icon FILE.icns\n", stderr);
        return 64;
    }
    QSaveFile file(QString::fromLocal8Bit(argv[1]));
    if (file.open(QIODevice::WriteOnly) && file.write(korvel::iconSet()) > 0 && file.commit())
        return 0;
    std::fprintf(stderr, "korvel-icon: %s: %s\n", argv[1], qUtf8Printable(file.errorString()));
    return 1;
}

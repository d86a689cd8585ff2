// Prints the tray's job file for a program and a log file, for a property-list parser to read.

#include "service/login_item.h"

#include <cstdio>

int main(int argc, char **argv) {
    if (argc != 3)
        return 64;
    std::fputs(qUtf8Printable(korvel::loginItemText(QString::fromUtf8(argv[1]), QString::fromUtf8(argv[2]))), stdout);
}

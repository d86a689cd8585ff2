#include "platform/qt/standard_streams.h"

#include <fcntl.h>
#include <initializer_list>
#include <unistd.h>

namespace korvel {

void openStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(stream, F_GETFD) < 0)
            ::open("/dev/null", O_RDWR); // takes the lowest free descriptor, which is this one
}

} // namespace korvel

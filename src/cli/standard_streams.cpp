#include "cli/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <initializer_list>

namespace vort {

// The lowest number that is free is the next one opened. Standard input is opened for writing and
// the others for reading, so that uses fail as they would on a closed one.
void occupy_standard_streams() {
    for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(number, F_GETFD) >= 0 || errno != EBADF) continue;
        if (::open("/dev/null", number == STDIN_FILENO ? O_WRONLY : O_RDONLY) != number) {
            ::_exit(1);
        }
    }
}

}  // namespace vort

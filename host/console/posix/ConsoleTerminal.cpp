#include "host/console/ConsoleTerminal.h"

#include <errno.h>
#include <sys/ioctl.h>
#include <unistd.h>

bool ConsoleInputIsTerminal() { return isatty(STDIN_FILENO) != 0; }

bool ConsoleOutputIsTerminal() { return isatty(STDOUT_FILENO) != 0; }

int ConsoleColumns() {
    winsize size = {};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
    return 80;
}

void ConsoleBinaryStreams() {}  // POSIX streams never translate line ends

long ConsoleReadInput(char* buffer, unsigned long size) {
    for (;;) {
        ssize_t n = read(STDIN_FILENO, buffer, size);
        if (n >= 0 || errno != EINTR) return n < 0 ? -1 : static_cast<long>(n);
    }
}

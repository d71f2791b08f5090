#include "host/console/ConsoleTerminal.h"

#include <fcntl.h>
#include <io.h>
#include <stdio.h>
#include <windows.h>

bool ConsoleInputIsTerminal() { return _isatty(_fileno(stdin)) != 0; }

bool ConsoleOutputIsTerminal() { return _isatty(_fileno(stdout)) != 0; }

int ConsoleColumns() {
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info)) {
        int columns = info.srWindow.Right - info.srWindow.Left + 1;
        if (columns > 0) return columns;
    }
    return 80;
}

void ConsoleBinaryStreams() {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
}

long ConsoleReadInput(char* buffer, unsigned long size) {
    int n = _read(_fileno(stdin), buffer, size > 65536 ? 65536u : static_cast<unsigned>(size));
    return n < 0 ? -1 : n;
}

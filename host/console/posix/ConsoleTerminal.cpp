#include "host/console/ConsoleTerminal.h"

#include <unistd.h>

bool ConsoleInputIsTerminal() { return isatty(STDIN_FILENO) != 0; }

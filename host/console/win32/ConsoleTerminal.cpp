#include "host/console/ConsoleTerminal.h"

#include <io.h>
#include <stdio.h>

bool ConsoleInputIsTerminal() { return _isatty(_fileno(stdin)) != 0; }

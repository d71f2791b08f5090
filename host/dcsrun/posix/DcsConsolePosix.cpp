#include <unistd.h>

#include "host/dcsrun/DcsConsole.h"

void DcsBinaryOutput() {}  // POSIX streams never translate line ends

bool DcsInputIsTerminal() { return isatty(0) != 0; }

#include <fcntl.h>
#include <io.h>
#include <stdio.h>

#include "host/dcsrun/DcsConsole.h"

// Without this the C runtime writes "\r\n" for every "\n" of the script.
void DcsBinaryOutput() {
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
}

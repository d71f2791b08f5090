#include "host/dcsrun/DcsConsole.h"

void DcsBinaryOutput() {}  // POSIX streams never translate line ends

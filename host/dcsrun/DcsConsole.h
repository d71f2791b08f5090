// What dcsrun needs from the console, per platform (posix/, win32/); its
// interrupts come through host/console/ConsoleInterrupt.h.
#pragma once

// Standard output and error take bytes as they are (no "\r\n" for "\n").
void DcsBinaryOutput();

// What dcsrun needs from the console, per platform (posix/, win32/).
#pragma once

// Standard output and error take bytes as they are (no "\r\n" for "\n").
void DcsBinaryOutput();

// An interrupt (Ctrl+C; on POSIX also SIGTERM) asks the script to stop: the
// first one calls stop(context), and the run ends as the Script Processor's
// "Stop script" ends it; a second one ends the program at once. Call it
// before any other thread starts; stop null (before context goes away)
// leaves later interrupts nothing to call. Interrupts the environment
// ignores stay ignored.
void DcsStopOnInterrupt(void (*stop)(void*), void* context);

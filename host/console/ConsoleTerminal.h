// The console as dcsrun, dcsterm and dcsfm meet it (posix/, win32/).
#pragma once

// Whether standard input is a terminal someone types at.
bool ConsoleInputIsTerminal();

// Whether standard output is a terminal (a progress bar can be redrawn).
bool ConsoleOutputIsTerminal();

// The width of the terminal standard output shows on; 80 when unknown.
int ConsoleColumns();

// Standard input and output take bytes as they are (no "\r\n" for "\n").
void ConsoleBinaryStreams();

// Up to size bytes of standard input, read past the C library's buffer (no
// lock of stdin is held while it waits); 0 at its end, -1 on an error.
long ConsoleReadInput(char* buffer, unsigned long size);

// Whether dcsrun's standard input is a terminal someone types at (posix/, win32/).
#pragma once

bool ConsoleInputIsTerminal();

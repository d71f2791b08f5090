// Starts a test's program in a process of its own and collects what it
// prints. Shared by the runners that check dcsrun's output.
#pragma once

#include <string>
#include <vector>

// Runs PROGRAM ARGS... with an empty standard input. OUTPUT receives its
// standard output, and its standard error too when withErrors is set;
// STATUS its exit status. False when it cannot be started.
bool RunProgram(const std::string& program, const std::vector<std::string>& args, bool withErrors,
                std::string* output, int* status);

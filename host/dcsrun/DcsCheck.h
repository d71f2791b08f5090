// dcsrun --check: reads scripts as a run reads them and runs nothing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "scriptrt/VariableExchange.h"

// Parses each script, and every sub-script it names by a literal file name in
// an executesubscript or executesubscriptfunc call when that file exists,
// without a device. Each fault is one line on standard output: the script's
// name, ": ", the run's diagnostic line. The variables (as --set hands them
// in) are known names of the scripts given, not of their sub-scripts.
// Returns the exit status: 21 when a script does not parse, else 8 when a
// script given cannot be opened, else 0.
int DcsCheckScripts(const std::vector<std::string>& scripts, const TONX_SCRIPTVARIABLE* variables,
                    uint64_t variableCount);

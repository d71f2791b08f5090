// Options with a value on the console tools' command lines: "--opt value"
// and "--opt=value" alike.
#pragma once

#include <string>

// The option's name and, when written inline ("--opt=value"), its value.
// Returns whether the value was inline.
bool SplitConsoleOption(const std::string& arg, std::string* name, std::string* value);

// The value of option NAME at argv[*index] when it was not inline: the next
// argument, *index moving onto it. False, with *error, when there is none.
bool TakeConsoleOptionValue(int argc, const char* const* argv, int* index, const std::string& name,
                            std::string* value, std::string* error);

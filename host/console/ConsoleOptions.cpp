#include "host/console/ConsoleOptions.h"

bool SplitConsoleOption(const std::string& arg, std::string* name, std::string* value) {
    size_t eq = arg.find('=');
    if (eq == std::string::npos || arg.compare(0, 2, "--") != 0) {
        *name = arg;
        value->clear();
        return false;
    }
    *name = arg.substr(0, eq);
    *value = arg.substr(eq + 1);
    return true;
}

bool TakeConsoleOptionValue(int argc, const char* const* argv, int* index, const std::string& name,
                            std::string* value, std::string* error) {
    if (*index + 1 >= argc) {
        *error = "option " + name + " needs a value";
        return false;
    }
    *value = argv[++*index];
    return true;
}

#include "RunProgram.h"

#include <cstdio>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/wait.h>
#endif

#ifdef _WIN32
// CreateProcess without cmd.exe and without a console: a shell per run costs
// seconds under Wine and now and then fails to start at all.
bool RunProgram(const std::string& program, const std::vector<std::string>& args, bool withErrors,
                std::string* output, int* status) {
    std::string line = "\"" + program + "\"";
    for (const std::string& a : args) line += " \"" + a + "\"";
    SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
    HANDLE readEnd = nullptr, writeEnd = nullptr;
    if (!CreatePipe(&readEnd, &writeEnd, &inherit, 0)) return false;
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
    HANDLE nul = CreateFileA("NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                             &inherit, OPEN_EXISTING, 0, nullptr);
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = nul;
    startup.hStdOutput = writeEnd;
    startup.hStdError = withErrors ? writeEnd : nul;
    PROCESS_INFORMATION process = {};
    BOOL started = CreateProcessA(nullptr, &line[0], nullptr, nullptr, TRUE, CREATE_NO_WINDOW,
                                  nullptr, nullptr, &startup, &process);
    CloseHandle(writeEnd);
    if (nul != INVALID_HANDLE_VALUE) CloseHandle(nul);
    if (!started) {
        CloseHandle(readEnd);
        return false;
    }
    char buffer[65536];
    DWORD n = 0;
    while (ReadFile(readEnd, buffer, sizeof buffer, &n, nullptr) && n > 0) output->append(buffer, n);
    CloseHandle(readEnd);
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hProcess);
    CloseHandle(process.hThread);
    *status = (int)code;
    return true;
}
#else
bool RunProgram(const std::string& program, const std::vector<std::string>& args, bool withErrors,
                std::string* output, int* status) {
    std::string line = "'" + program + "'";
    for (const std::string& a : args) line += " '" + a + "'";
    line += withErrors ? " </dev/null 2>&1" : " </dev/null";
    fflush(stdout);
    FILE* pipe = popen(line.c_str(), "r");
    if (!pipe) return false;
    char buffer[65536];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) output->append(buffer, n);
    int rc = pclose(pipe);
    if (rc == -1 || !WIFEXITED(rc)) return false;
    *status = WEXITSTATUS(rc);
    return true;
}
#endif

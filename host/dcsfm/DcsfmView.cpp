#include "host/dcsfm/DcsfmView.h"

#include "filemanager/FMCopyLoop.h"
#include "filemanager/FMTexts.h"
#include "frame/ErrCode.h"
#include "host/console/ConsolePrompt.h"
#include "host/dcsfm/DcsfmProgress.h"
#include "util/AsciiCase.h"

void CDcsfmView::ShowError(const char* text) {
    std::fprintf(m_setup.messages, "%s\n", text);
    std::fflush(m_setup.messages);
    m_failed = true;
}

std::string CDcsfmView::ReadAnswer() {
    std::fflush(m_setup.messages);
    std::string line;
    if (!ReadConsoleLine(m_setup.answers, &line)) {
        std::fputc('\n', m_setup.messages);  // the prompt's line ends all the same
        return std::string();
    }
    std::string answer;
    for (char c : line)
        if (c != ' ' && c != '\t') answer += ondutil::AsciiLower(c);
    return answer;
}

EFMANSWER CDcsfmView::AskDelete(const char* text) {
    if (m_setup.yes) return FM_ANSWER_YES;
    // Caption "Warning", Yes/No; anything but yes is No.
    std::fprintf(m_setup.messages, "%s: %s [y/N] ", ondfm::kCaptionWarning, text);
    std::string answer = ReadAnswer();
    if (answer == "y" || answer == "yes") return FM_ANSWER_YES;
    m_stopped = true;
    return FM_ANSWER_NO;
}

EFMANSWER CDcsfmView::AskFormat(const char* text) {
    if (m_setup.yes) return m_setup.usedOnly ? FM_ANSWER_NO : FM_ANSWER_YES;
    // Caption "WARNING", Yes/No/Cancel with Cancel the default.
    std::fprintf(m_setup.messages, "%s\n%s\n[y/n/C] ", ondfm::kCaptionFormat, text);
    std::string answer = ReadAnswer();
    if (answer == "y" || answer == "yes") return FM_ANSWER_YES;
    if (answer == "n" || answer == "no") return FM_ANSWER_NO;
    m_stopped = true;
    return FM_ANSWER_CANCEL;
}

void CDcsfmView::CopyFiles(const TFILEENTRYLIST& files) {
    TDCSFMSTOP none;
    TDCSFMSTOP* stop = m_setup.stop ? m_setup.stop : &none;
    CDcsfmProgress progress(files, m_setup.progress, m_setup.terminal, m_setup.columns,
                            &stop->requested);
    std::vector<TCOPYERROR> errors;
    stop->copying = true;
    int32_t result = ondfm::RunCopyLoop(m_setup.channel, files, m_setup.continueOnError,
                                        &progress, &errors);
    stop->copying = false;
    if (stop->requested) m_stopped = true;  // the only way the loop is aborted
    // As the window: every failure afterwards, in one report.
    std::string report = ondfm::CopyReport(files, errors, m_setup.channel);
    if (!report.empty()) ShowError(report.c_str());
    else if (result == EONX_ERR_OUTOFMEMORY) ShowError("dcsfm: out of memory");
}

#include "host/dcsfm/DcsfmProgress.h"

#include <algorithm>

#include "filemanager/FMTexts.h"
#include "frame/OndDeviceComm.h"

namespace {

// A console measures text in characters.
class CCharacterMeasure : public CFMTextMeasure_0 {
public:
    int TextWidth(const std::string& text) override { return int(text.size()); }
};

}  // namespace

std::string DcsfmBarLine(uint32_t done, uint32_t total, uint32_t steps, int columns) {
    std::string line = ondfm::CopiedSoFar(done, total);
    uint64_t whole = total ? (uint64_t(done) * 100 + std::min(steps, 100u)) / total : 0;
    uint32_t percent = uint32_t(std::min<uint64_t>(whole, 100));
    char number[8];
    std::snprintf(number, sizeof number, "%3u%%", unsigned(percent));
    const int room = std::max(columns - 1, 1);
    // " [" + bar + "] " + "100%": up to 40 marks, if 10 fit.
    int bar = std::min(40, room - int(line.size()) - 8);
    if (bar >= 10) {
        int filled = int(percent * uint32_t(bar) / 100);
        line += " [" + std::string(size_t(filled), '#') + std::string(size_t(bar - filled), '-') + "] ";
    } else {
        line += ' ';
    }
    line += number;
    if (line.size() > size_t(room)) line.resize(size_t(room));
    return line;
}

CDcsfmProgress::CDcsfmProgress(const TFILEENTRYLIST& files, FILE* out, bool terminal,
                               int columns, const std::atomic<bool>* abort)
    : m_files(files), m_out(out), m_terminal(terminal), m_columns(columns), m_abort(abort) {}

void CDcsfmProgress::Write(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), m_out);
    std::fflush(m_out);
}

void CDcsfmProgress::DrawBar() {
    std::string line = DcsfmBarLine(uint32_t(m_index), uint32_t(m_files.size()), m_steps, m_columns);
    if (m_barShown && line == m_bar) return;  // a slow serial console gets only changes
    m_bar = line;
    size_t shown = line.size();
    if (line.size() < m_barShown) line.append(m_barShown - line.size(), ' ');  // the rest of a longer one
    Write("\r" + line);
    m_barShown = shown;
}

void CDcsfmProgress::ClearBar() {
    if (m_barShown == 0) return;
    Write("\r" + std::string(m_barShown, ' ') + "\r");
    m_barShown = 0;
}

void CDcsfmProgress::FileStarted(uint32_t, size_t index) {
    m_index = index;
    m_steps = 0;
    const std::string& path = m_files[index].path;
    if (!m_terminal) {
        Write(ondfm::CopiedSoFar(uint32_t(index), uint32_t(m_files.size())) + "\n" +
              ondfm::kCurrentlyCopying + path + "\n");
        return;
    }
    CCharacterMeasure measure;
    ClearBar();
    Write(ondfm::CurrentlyCopyingLine(path, std::max(m_columns - 1, 1), &measure) + "\n");
    DrawBar();
}

void CDcsfmProgress::FileProgress(uint32_t stepsDone) {
    if (!m_terminal || stepsDone == m_steps) return;
    m_steps = stepsDone;
    DrawBar();
}

bool CDcsfmProgress::AbortRequested() { return m_abort && m_abort->load(); }

void CDcsfmProgress::CopyEnded() {
    if (m_terminal) ClearBar();
}

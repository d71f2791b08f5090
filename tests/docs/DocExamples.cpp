// doc_examples: runs every example of the documentation pages through dcsrun
// and compares what dcsrun prints with what the page says it prints, so that
// a page that drifts from the program fails the build.
//
// The markup, as the pages describe it at their top:
//   ```dcs                 a script to run; saved as example.dcs in a fresh folder
//   ```output              must follow it: what the run prints, standard output and
//                          standard error together, as a terminal shows them (a
//                          line redrawn after a carriage return as it ends up).
//                          An optional first line "$ dcsrun ARGS" is the command
//                          (default "$ dcsrun example.dcs"); an optional last line
//                          "(exit status N)" the exit status (default 0).
//   ```dcs NAME, ```text NAME   a file put beside the next example, not run
//                          (NAME may lead into a folder: lib/x.dcs).
// In an output block "<folder>" stands for the example's folder as the script
// sees it (what getbasepath() answers there).
//
// Every run gets no input (standard input is the null device), so dcsrun
// answers the operator's questions as Cancel.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/RunProgram.h"

namespace fs = std::filesystem;

namespace {

struct TBLOCK {
    std::string info;  // the words after the fence
    std::string text;
    int line;          // of the opening fence
};

struct TEXAMPLE {
    std::vector<TBLOCK> files;  // name in info's second word
    TBLOCK script;
    TBLOCK output;
};

bool ReadText(const fs::path& path, std::string* text) {
    FILE* f = fopen(path.string().c_str(), "rb");
    if (!f) return false;
    char buffer[65536];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, f)) > 0) text->append(buffer, n);
    fclose(f);
    return true;
}

bool WriteText(const fs::path& path, const std::string& text) {
    FILE* f = fopen(path.string().c_str(), "wb");
    if (!f) return false;
    bool ok = fwrite(text.data(), 1, text.size(), f) == text.size();
    return fclose(f) == 0 && ok;
}

std::vector<std::string> Words(const std::string& text) {
    std::vector<std::string> words;
    size_t pos = 0;
    while ((pos = text.find_first_not_of(" \t", pos)) != std::string::npos) {
        size_t end = text.find_first_of(" \t", pos);
        words.push_back(text.substr(pos, end - pos));
        pos = end;
    }
    return words;
}

std::vector<TBLOCK> FencedBlocks(const std::string& page) {
    std::vector<TBLOCK> blocks;
    TBLOCK* open = nullptr;
    int number = 0;
    size_t pos = 0;
    while (pos < page.size()) {
        size_t end = page.find('\n', pos);
        if (end == std::string::npos) end = page.size();
        std::string line = page.substr(pos, end - pos);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        ++number;
        pos = end + 1;
        if (line.compare(0, 3, "```") == 0) {
            if (open) {
                open = nullptr;
            } else {
                blocks.push_back({line.substr(3), std::string(), number});
                open = &blocks.back();
            }
        } else if (open) {
            open->text += line + "\n";
        }
    }
    return blocks;
}

// Pairs each script block with its output block; false with a message for a
// page that breaks the markup.
bool Examples(const std::vector<TBLOCK>& blocks, const std::string& page,
              std::vector<TEXAMPLE>* examples) {
    std::vector<TBLOCK> files;
    for (size_t i = 0; i < blocks.size(); ++i) {
        std::vector<std::string> info = Words(blocks[i].info);
        if (info.empty()) continue;
        if ((info[0] == "dcs" || info[0] == "text") && info.size() == 2) {
            files.push_back(blocks[i]);
        } else if (info[0] == "dcs" && info.size() == 1) {
            if (i + 1 >= blocks.size() || Words(blocks[i + 1].info) != std::vector<std::string>{"output"}) {
                fprintf(stderr, "%s:%d: a script without an output block after it\n", page.c_str(),
                        blocks[i].line);
                return false;
            }
            examples->push_back({files, blocks[i], blocks[i + 1]});
            files.clear();
            ++i;
        } else if (info[0] == "output") {
            fprintf(stderr, "%s:%d: an output block without a script\n", page.c_str(), blocks[i].line);
            return false;
        }
    }
    if (!files.empty()) {
        fprintf(stderr, "%s:%d: a file block without an example after it\n", page.c_str(),
                files.back().line);
        return false;
    }
    return true;
}

// The bytes as a terminal leaves them: a carriage return goes back to the
// start of the line, and what follows overwrites it.
std::string Rendered(const std::string& raw) {
    std::string out, line;
    size_t column = 0;
    for (char c : raw) {
        if (c == '\r') {
            column = 0;
        } else if (c == '\n') {
            out += line + "\n";
            line.clear();
            column = 0;
        } else {
            if (column < line.size()) line[column] = c;
            else line += c;
            ++column;
        }
    }
    if (!line.empty()) out += line + "\n";
    return out;
}


std::string Shown(const std::string& text) {
    std::string out;
    for (unsigned char c : text) {
        if (c == '\n') out += "\n    | ";
        else if (c < 0x20 || c == 0x7F) {
            char hex[8];
            snprintf(hex, sizeof hex, "\\x%02X", c);
            out += hex;
        } else {
            out += (char)c;
        }
    }
    return "    | " + out;
}

void ReplaceAll(std::string* text, const std::string& from, const std::string& to) {
    for (size_t at = 0; (at = text->find(from, at)) != std::string::npos; at += to.size())
        text->replace(at, from.size(), to);
}

bool RunExample(const std::string& program, const fs::path& folder, const std::string& page,
                const TEXAMPLE& example) {
    std::error_code ec;
    fs::remove_all(folder, ec);
    fs::create_directories(folder, ec);
    fs::current_path(folder, ec);
    if (ec) {
        fprintf(stderr, "doc_examples: cannot use the folder %s\n", folder.string().c_str());
        return false;
    }

    // The output block: command, expected text, exit status.
    std::vector<std::string> lines;
    for (size_t pos = 0; pos < example.output.text.size();) {
        size_t end = example.output.text.find('\n', pos);
        lines.push_back(example.output.text.substr(pos, end - pos));
        pos = end + 1;
    }
    std::vector<std::string> args = {"example.dcs"};
    if (!lines.empty() && lines.front().compare(0, 9, "$ dcsrun ") == 0) {
        args = Words(lines.front().substr(9));
        lines.erase(lines.begin());
    }
    int expectedStatus = 0;
    if (!lines.empty() && lines.back().compare(0, 13, "(exit status ") == 0) {
        expectedStatus = atoi(lines.back().c_str() + 13);
        lines.pop_back();
    }
    std::string expected;
    for (const std::string& l : lines) expected += l + "\n";

    if (expected.find("<folder>") != std::string::npos) {
        std::string base;
        int status = 0;
        if (!WriteText("probe.dcs", "print(getbasepath());") ||
            !RunProgram(program, {"probe.dcs"}, true, &base, &status) || status != 0) {
            fprintf(stderr, "doc_examples: cannot ask dcsrun for the folder\n");
            return false;
        }
        fs::remove("probe.dcs", ec);
        ReplaceAll(&expected, "<folder>", base);
    }
    for (const TBLOCK& file : example.files) {
        const fs::path name = Words(file.info)[1];
        if (name.has_parent_path()) fs::create_directories(name.parent_path(), ec);
        if (!WriteText(name, file.text)) {
            fprintf(stderr, "doc_examples: cannot write %s\n", Words(file.info)[1].c_str());
            return false;
        }
    }
    if (!WriteText("example.dcs", example.script.text)) {
        fprintf(stderr, "doc_examples: cannot write example.dcs\n");
        return false;
    }

    std::string raw;
    int status = 0;
    if (!RunProgram(program, args, true, &raw, &status)) {
        fprintf(stderr, "doc_examples: cannot run %s\n", program.c_str());
        return false;
    }
    std::string actual = Rendered(raw);
    if (actual == expected && status == expectedStatus) return true;
    fprintf(stderr, "%s:%d: the example's output differs\n  expected (exit status %d):\n%s\n"
            "  dcsrun printed (exit status %d):\n%s\n",
            page.c_str(), example.script.line, expectedStatus, Shown(expected).c_str(), status,
            Shown(actual).c_str());
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 6 || std::string(argv[1]) != "--program" || std::string(argv[3]) != "--work") {
        fprintf(stderr, "usage: doc_examples --program DCSRUN --work FOLDER PAGE.md...\n");
        return 2;
    }
    const std::string program = fs::absolute(argv[2]).string();
    const fs::path work = fs::absolute(argv[4]);
    std::vector<std::string> pages;  // absolute: the runs change folders
    for (int i = 5; i < argc; ++i) pages.push_back(fs::absolute(argv[i]).string());
    int failures = 0, count = 0;
    for (const std::string& page : pages) {
        std::string text;
        std::vector<TEXAMPLE> examples;
        if (!ReadText(page, &text)) {
            fprintf(stderr, "doc_examples: cannot read %s\n", page.c_str());
            return 2;
        }
        if (!Examples(FencedBlocks(text), page, &examples)) return 2;
        const std::string stem = fs::path(page).stem().string();
        for (const TEXAMPLE& example : examples) {
            fs::path folder = work / (stem + "-" + std::to_string(example.script.line));
            ++count;
            if (!RunExample(program, folder, page, example)) ++failures;
        }
    }
    printf("doc_examples: %d examples, %d failed\n", count, failures);
    return failures ? 1 : 0;
}

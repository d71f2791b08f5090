// The File Manager's texts built from numbers, and the progress window's
// shortened name line.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "filemanager/FMTexts.h"
#include "host/sim/SimDevice.h"

TEST(FMTexts, DirectorySummaryWithA64BitFreeFigure) {
    TDEVDIRINFO info = {};
    info.freeFactorA = 0xFFFFFFFF;
    info.freeFactorB = 0xFFFFFFFF;
    info.fileCount = 255;
    info.bytesInFiles = 4000000000u;
    info.bytesOnDevice = 4294967295u;
    EXPECT_EQ(ondfm::DirectorySummary(info),
              "4000000000 bytes in 255 files\nrequire 4294967295 bytes on disk\n"
              "18446744065119617025 bytes free");
    info = {};
    info.freeFactorA = 65536;
    info.freeFactorB = 131072;
    EXPECT_EQ(ondfm::DirectorySummary(info),
              "0 bytes in 0 files\nrequire 0 bytes on disk\n8589934592 bytes free");
}

TEST(FMTexts, PluralRules) {
    EXPECT_EQ(ondfm::DeleteQuestion(1), "Deleting 1 file from device, are you sure?");
    EXPECT_EQ(ondfm::DeleteQuestion(2), "Deleting 2 files from device, are you sure?");
    EXPECT_EQ(ondfm::DeleteQuestion(0), "Deleting 0 files from device, are you sure?");
    // The status line counts the files already done.
    EXPECT_EQ(ondfm::CopiedSoFar(0, 1), "0 files of 1 copied so far...");
    EXPECT_EQ(ondfm::CopiedSoFar(1, 3), "1 file of 3 copied so far...");
    EXPECT_EQ(ondfm::CopiedSoFar(2, 3), "2 files of 3 copied so far...");
}

TEST(FMTexts, CopyReportOneLinePerErrorWithoutATrailingLineFeed) {
    CSimDevice sim;
    TFILEENTRYLIST files(3);
    files[0].path = "C:\\a.bin";
    files[1].path = "C:\\b c.bin";
    files[2].path = "C:\\d.bin";
    EXPECT_EQ(ondfm::CopyReport(files, {}, &sim), "");
    EXPECT_EQ(ondfm::CopyReport(files, {{1, SIMDEV_ERR_LOCALFILE}}, &sim),
              "Error during copying C:\\b c.bin: Local file cannot be opened or read");
    EXPECT_EQ(ondfm::CopyReport(files, {{0, SIMDEV_ERR_STORAGEFULL}, {2, 4242}}, &sim),
              "Error during copying C:\\a.bin: Not enough free space on the device\n"
              "Error during copying C:\\d.bin: Unknown device error 4242");
}

namespace {

// Every character is as wide as its code modulo 7 plus 3 pixels: the widths
// differ, so a wrong k shows.
class CFakeMeasure : public CFMTextMeasure_0 {
public:
    int TextWidth(const std::string& text) override {
        ++calls;
        int width = 0;
        for (unsigned char c : text) width += 3 + c % 7;
        return width;
    }
    int calls = 0;
};

// The rule as written: k from length - 1 down until the line fits or k is 0.
std::string Reference(const std::string& path, int width, CFMTextMeasure_0* measure) {
    std::string whole = "Currently copying " + path;
    if (measure->TextWidth(whole) <= width) return whole;
    size_t k = path.empty() ? 0 : path.size() - 1;
    for (; k > 0; --k) {
        std::string line = "Currently copying ..." + path.substr(path.size() - k);
        if (measure->TextWidth(line) <= width) break;
    }
    return "Currently copying ..." + path.substr(path.size() - k);
}

}  // namespace

TEST(FMTexts, CurrentlyCopyingLineKeepsAsMuchOfThePathsEndAsFits) {
    CFakeMeasure measure;
    std::string path = "C:\\very\\long\\folder\\names\\that\\go\\on\\and\\on\\file.bin";
    std::string longPath = "D:\\" + std::string(300, 'x') + "\\tail-of-the-path.bin";
    for (const std::string& p : {path, longPath, std::string("C:\\a"), std::string()}) {
        for (int width = 0; width < 700; width += 7) {
            CFakeMeasure reference;
            EXPECT_EQ(ondfm::CurrentlyCopyingLine(p, width, &measure), Reference(p, width, &reference))
                << p.size() << " " << width;
        }
    }
    // Fits: the whole path without dots.
    EXPECT_EQ(ondfm::CurrentlyCopyingLine("C:\\a", 10000, &measure), "Currently copying C:\\a");
    // Nothing of the path fits: k reaches 0.
    EXPECT_EQ(ondfm::CurrentlyCopyingLine(path, 5, &measure), "Currently copying ...");
    // A few measurements, not one per character.
    measure.calls = 0;
    ondfm::CurrentlyCopyingLine("D:\\" + std::string(3000, 'x'), 400, &measure);
    EXPECT_LE(measure.calls, 16);
}

// The simulated device's storage as the files of a folder: loaded into a
// fresh device before a program starts, written back when it ends, so that a
// user can try every file operation without hardware and see what happened.
// Host-side code, not part of the module.
//
// The naming rule (one file per device file):
// - "ID-TYPE" followed by the end of the name or by any character that is not
//   a digit: the device file ID-TYPE, both decimal, 0 to 255, leading zeros
//   allowed ("3-1.bin", "003-1", "12-0-config.txt");
// - "program" alone or followed by a "." ("program.bin", any case): the
//   program slot, where a transfer with mode "program" goes;
// - names beginning with "." and subfolders are passed over;
// - any other name is refused, as are two files for one ID and two programs.
// The bytes are taken as the device holds them: a file sent with mode "bit
// reverse" is saved bit-reversed, and loads back the same.
#pragma once

#include <cstdint>
#include <string>

class CSimDevice;

struct TSIMFILENAME {
    bool program = false;  // the program slot; fileId and fileType unused
    uint8_t fileId = 0;
    uint8_t fileType = 0;
};

// false for a name the rule does not cover.
bool ParseSimFileName(const std::string& name, TSIMFILENAME* parsed);

// The name a device file is saved under: "003-1.bin" (ID in three digits, so
// that the folder lists in ID order).
std::string SimFileName(uint8_t fileId, uint8_t fileType);

// Stores the folder's files on the device; false with *error (one line) when
// the folder cannot be read, a name breaks the rule or the files do not fit.
bool LoadSimFolder(CSimDevice* sim, const std::string& folder, std::string* error);

// Writes the device's files into the folder (made when missing), then removes
// the other files there that the rule names (an earlier save), so that the
// folder shows the device as it is; other files stay. false with *error.
bool SaveSimFolder(CSimDevice* sim, const std::string& folder, std::string* error);

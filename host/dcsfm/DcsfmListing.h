// The device directory as dcsfm ls prints it: the window's device list as a
// table (File ID, File type, File size, right-aligned) and its summary, or
// the same as JSON for programs.
#pragma once

#include <string>
#include <vector>

#include "frame/OndDeviceComm.h"

// The table's header and one line per entry.
std::string DcsfmListTable(const std::vector<TDEVDIRENTRY>& entries);

// One JSON object: "files" (id, type, size each) and either the summary's
// numbers and text (info given) or "error", the text the window shows in
// the summary's place.
std::string DcsfmListJson(const std::vector<TDEVDIRENTRY>& entries, const TDEVDIRINFO* info,
                          const std::string& summary);

// text as a JSON string, quotes included. Bytes above 127 are taken as the
// code page's first 256 characters (\u0080 to \u00ff).
std::string DcsfmJsonString(const std::string& text);

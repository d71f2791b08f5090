#include "host/dcsfm/DcsfmListing.h"

#include <cinttypes>
#include <cstdio>

std::string DcsfmListTable(const std::vector<TDEVDIRENTRY>& entries) {
    std::string table;
    char line[64];
    std::snprintf(line, sizeof line, "%7s  %9s  %10s\n", "File ID", "File type", "File size");
    table += line;
    for (const TDEVDIRENTRY& entry : entries) {
        std::snprintf(line, sizeof line, "%7u  %9u  %10u\n", unsigned(entry.fileId),
                      unsigned(entry.fileType), unsigned(entry.fileSize));
        table += line;
    }
    return table;
}

std::string DcsfmJsonString(const std::string& text) {
    std::string json = "\"";
    for (char c : text) {
        unsigned char byte = static_cast<unsigned char>(c);
        switch (c) {
        case '"': json += "\\\""; break;
        case '\\': json += "\\\\"; break;
        case '\n': json += "\\n"; break;
        case '\r': json += "\\r"; break;
        case '\t': json += "\\t"; break;
        default:
            if (byte < 0x20 || byte >= 0x7F) {
                char escaped[8];
                std::snprintf(escaped, sizeof escaped, "\\u%04x", unsigned(byte));
                json += escaped;
            } else {
                json += c;
            }
        }
    }
    return json + "\"";
}

std::string DcsfmListJson(const std::vector<TDEVDIRENTRY>& entries, const TDEVDIRINFO* info,
                          const std::string& summary) {
    std::string json = "{\n  \"files\": [";
    char line[160];
    for (size_t i = 0; i < entries.size(); ++i) {
        std::snprintf(line, sizeof line, "%s\n    {\"id\": %u, \"type\": %u, \"size\": %u}",
                      i ? "," : "", unsigned(entries[i].fileId), unsigned(entries[i].fileType),
                      unsigned(entries[i].fileSize));
        json += line;
    }
    json += entries.empty() ? "],\n" : "\n  ],\n";
    if (info) {
        std::snprintf(line, sizeof line,
                      "  \"fileCount\": %u,\n  \"bytesInFiles\": %u,\n  \"bytesOnDisk\": %u,\n"
                      "  \"bytesFree\": %" PRIu64 ",\n",
                      unsigned(info->fileCount), unsigned(info->bytesInFiles),
                      unsigned(info->bytesOnDevice),
                      uint64_t(info->freeFactorA) * info->freeFactorB);
        json += line;
        json += "  \"summary\": " + DcsfmJsonString(summary) + "\n}\n";
    } else {
        json += "  \"error\": " + DcsfmJsonString(summary) + "\n}\n";
    }
    return json;
}

// dcsrun's --set and --get: "NAME=TYPE:VALUE" turned into the Script
// Processor's exchange records, and read-back records turned into lines.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "scriptrt/VariableExchange.h"

class CDcsVariables {
public:
    // false with *error for a malformed setting.
    bool Add(const std::string& setting, std::string* error);
    TONX_SCRIPTVARIABLE* Records() { return m_records.data(); }
    uint64_t Count() const { return m_records.size(); }

private:
    // The records point into these; deques keep elements in place as they grow.
    std::deque<std::string> m_names;
    std::deque<std::string> m_texts;
    std::deque<uint64_t> m_numbers;
    std::vector<TONX_SCRIPTVARIABLE> m_records;
};

// A query record for GetVariables.
TONX_SCRIPTVARIABLE DcsQueryRecord(const char* name);

// "NAME=TYPE:VALUE\n" for a record that was found, "NAME: not set\n" otherwise.
std::string DcsFormatVariable(const std::string& name, const TONX_SCRIPTVARIABLE& record,
                              bool found);

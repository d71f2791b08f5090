// A File Manager view for tests: records what the device actions show, with
// the channel's lock owner at that moment, and answers questions from a script.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "filemanager/FMDevice.h"
#include "host/sim/SimDevice.h"

class CFMTestView : public CFMDeviceView_0 {
public:
    explicit CFMTestView(CSimDevice* sim) : m_sim(sim) {}

    void ShowError(const char* text) override { Note("error", text); }
    EFMANSWER AskDelete(const char* text) override {
        Note("ask-delete", text);
        return Answer();
    }
    EFMANSWER AskFormat(const char* text) override {
        Note("ask-format", text);
        return Answer();
    }
    void PrepareDeviceList() override { Note("prepare", ""); }
    void SetSummary(const char* text) override {
        summary = text;
        Note("summary", text);
    }
    void SetDeviceEntries(const std::vector<TDEVDIRENTRY>& list) override {
        entries = list;
        Note("entries", std::to_string(list.size()));
    }
    void CopyFiles(const TFILEENTRYLIST& files) override {
        copied = files;
        Note("copy", std::to_string(files.size()));
    }

    struct TEvent {
        std::string what, text;
        void* lockOwner;
        uint32_t lockCount;
    };
    std::vector<TEvent> events;
    std::deque<EFMANSWER> answers;  // empty: Cancel
    std::string summary;
    std::vector<TDEVDIRENTRY> entries;
    TFILEENTRYLIST copied;

    // The kinds of events in order, "|"-separated.
    std::string Kinds() const {
        std::string all;
        for (const TEvent& e : events) all += e.what + "|";
        return all;
    }
    const TEvent* Find(const std::string& what) const {
        for (const TEvent& e : events)
            if (e.what == what) return &e;
        return nullptr;
    }

private:
    void Note(const char* what, const std::string& text) {
        events.push_back({what, text, m_sim ? m_sim->LockOwner() : nullptr,
                          m_sim ? m_sim->LockCount() : 0});
    }
    EFMANSWER Answer() {
        if (answers.empty()) return FM_ANSWER_CANCEL;
        EFMANSWER a = answers.front();
        answers.pop_front();
        return a;
    }
    CSimDevice* m_sim;
};

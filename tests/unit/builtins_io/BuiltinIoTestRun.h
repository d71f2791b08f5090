// Running scripts with the device and user-input built-ins against the
// simulated device and an operator double.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "script/ScriptValue.h"
#include "scriptrt/OperatorPrompt.h"
#include "scriptrt/UserInputFuncs.h"
#include "tests/unit/SimTestSupport.h"

// One run; `device` may be null (no channel). externals are visible to the
// script and keep what it leaves in them.
inline TTESTRUN BuiltinIoRun(const std::string& text, COndDeviceComm_0* device,
                             const std::string& base, CONXOperatorPrompt_0* prompt = nullptr,
                             std::vector<CONXScriptVariable*>* externals = nullptr,
                             CONXScriptRunContext* context = nullptr) {
    CONXScriptRunContext own;
    if (!context) context = &own;
    context->m_sysFuncFactories = {ScriptRuntimeFactory};
    context->m_pOperator = prompt;
    TTESTRUN run;
    run.code = RunScript(context, text.c_str(), {.channel = device, .scriptDirectory = base.c_str(),
                         .externals = externals, .output = TestCollect, .outputContext = &run.output});
    return run;
}

// The progress lines a transfer of `name` writes through step 40; name empty
// for the bar alone. withStart: the all-dots line written before the transfer.
inline std::string BuiltinIoProgress(const std::string& name, bool withStart, uint32_t lastStep = 40) {
    std::string prefix = name.empty() ? std::string() : name + " ";
    std::string out;
    if (withStart) out += "\r" + prefix + std::string(40, '.');
    for (uint32_t step = 0; step <= lastStep; ++step)
        out += "\r" + prefix + std::string(step, '#') + std::string(40 - step, '.');
    return out;
}

// An operator that answers from a script of answers and remembers what it was asked.
class CTestOperator : public CONXOperatorPrompt_0 {
public:
    EOPERATORANSWER answer = OPERATOR_ANSWER_OK;
    uint64_t number = 0;
    std::string text;
    uint32_t index = 0;

    int calls = 0;
    std::string caption, prompt, message;
    TOPERATORNUMBERQUESTION question = {};
    std::string initialText;
    std::vector<std::string> items;
    uint32_t initialIndex = 0;

    void ShowMessage(const char* c, const char* t) override {
        ++calls;
        caption = c;
        message = t;
    }
    EOPERATORANSWER AskNumber(const TOPERATORNUMBERQUESTION& q, uint64_t* value) override {
        ++calls;
        question = q;
        caption = q.caption;
        prompt = q.prompt;
        question.caption = question.prompt = nullptr;  // not kept beyond the call
        *value = number;
        return answer;
    }
    EOPERATORANSWER AskString(const char* c, const char* p, const std::string& initial,
                              std::string* value) override {
        ++calls;
        caption = c;
        prompt = p;
        initialText = initial;
        *value = text;
        return answer;
    }
    EOPERATORANSWER AskListItem(const char* c, const char* p, const std::vector<std::string>& list,
                                uint32_t initial, uint32_t* selected) override {
        ++calls;
        caption = c;
        prompt = p;
        items = list;
        initialIndex = initial;
        *selected = index;
        return answer;
    }
};

// A device that gets a stop request at a given progress step of every transfer.
class CStopAtStepDevice : public CSimDevice {
public:
    CStopAtStepDevice(CONXScriptRunContext* run, uint32_t stopStep) : m_run(run), m_stopStep(stopStep) {}
    int transfers = 0;
    int32_t TransmitFile(const char* localPath, uint8_t fileId, uint8_t fileType, uint32_t fileMode,
                         TransferProgressCallback callback, void* context, uint32_t flag,
                         uint32_t steps) override {
        ++transfers;
        for (uint32_t step = 0; step <= steps; ++step) {
            if (step == m_stopStep) m_run->RequestStop();
            if (callback(context, step)) return SIMDEV_ERR_ABORTED;
        }
        return 0;
    }

private:
    CONXScriptRunContext* m_run;
    uint32_t m_stopStep;
};

// The diagnostic line that follows a failed run's own output.
inline bool BuiltinIoEndsWithError(const std::string& output, size_t ownLength, const char* errorText) {
    return output.size() > ownLength && output.compare(ownLength, strlen(errorText), errorText) == 0;
}

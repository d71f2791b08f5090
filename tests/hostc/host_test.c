/* A host written in plain C: it loads OndDeviceClient.dll with LoadLibrary,
   finds the five exports with GetProcAddress and uses the objects only
   through their tables of operations, by slot index, as a host built with
   another compiler does. */
#include <windows.h>

#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "c_channel.h"
#include "check.h"

/* The exports. */
typedef uint32_t (*FnGetNumObj)(void);
typedef uint32_t (*FnGetObjType)(uintptr_t index);
typedef uintptr_t (*FnGetObjInfo)(uint32_t type, uint32_t what);
typedef void* (*FnCreateInstance)(uint32_t type);
typedef void (*FnDeleteInstance)(void* object);

/* Slots of CONXDeviceClient_0, then of the CONXDeviceClient base. */
enum {
    SLOT_GETOBJTYPE, SLOT_GETPARAM, SLOT_SETPARAM, SLOT_GETPARAMLIMITS, SLOT_CONNECT,
    SLOT_CALL, SLOT_SHOWDIALOG, SLOT_CLOSEDIALOG, SLOT_ISDIALOGOPEN, SLOT_SETDLGEVENTDATA,
    SLOT_CREATENEWDIALOG, SLOT_DELETEDIALOG, SLOT_SIGNALDLGEVENT
};

typedef struct { void* const* vtbl; } Object;
#define SLOT(obj, n) (((Object*)(obj))->vtbl[n])

typedef uint32_t (*FnObjType)(void*);
typedef int32_t (*FnGetParam)(void*, uint32_t, uint64_t*, uint64_t*, uint64_t*, uint64_t*);
typedef int32_t (*FnSetParam)(void*, uint32_t, uint64_t, uint64_t, uint64_t, uint64_t);
typedef int32_t (*FnGetParamLimits)(void*, uint32_t, uint64_t*, uint64_t*, uint64_t*, uint64_t*,
                                    uint64_t*, uint64_t*, uint64_t*, uint64_t*);
typedef uint32_t (*FnConnect)(void*, void*);
typedef uint32_t (*FnCall)(void*, uint32_t, uint64_t, uint64_t, uint64_t, uint64_t);
typedef uint32_t (*FnShow)(void*, HWND);
typedef uint32_t (*FnClose)(void*);
typedef int32_t (*FnIsOpen)(void*);
typedef uint32_t (*FnSignal)(void*, uint32_t);

typedef struct {
    uint32_t (*callback)(void* client, void* userData, uint32_t event);
    void* userData;
    HWND hWnd;
    uint32_t uMsg;
    uint32_t threadId;
    uint32_t threadMsg;
} DlgEventData;
typedef void (*FnSetDlgEventData)(void*, DlgEventData*);

static FnGetNumObj GetNumObj;
static FnGetObjType GetObjType;
static FnGetObjInfo GetObjInfo;
static FnCreateInstance CreateInstance;
static FnDeleteInstance DeleteInstance;

static void TestExports(void) {
    const char* names[] = {"Terminal", "File Manager", "Script Processor"};
    CHECK(GetNumObj() == 3);
    for (uint32_t i = 0; i < 3; ++i) {
        CHECK(GetObjType(i) == 0x1000 + i);
        CHECK(strcmp((const char*)GetObjInfo(0x1000 + i, 0), names[i]) == 0);
    }
    CHECK(GetObjType(3) == 0xFFFFFFFFu);
    CHECK(GetObjType((uintptr_t)-1) == 0xFFFFFFFFu);
    CHECK(GetObjInfo(0x1001, 1) == 1);
    CHECK(GetObjInfo(0x1001, 2) == 0);
    CHECK(GetObjInfo(0x0FFF, 0) == 0);
    CHECK(CreateInstance(0x0FFF) == NULL);
    DeleteInstance(NULL);
}

static void TestCommonSlots(uint32_t type) {
    void* obj = CreateInstance(type);
    CHECK(obj != NULL);
    if (!obj) return;
    CHECK(((FnObjType)SLOT(obj, SLOT_GETOBJTYPE))(obj) == type);

    uint64_t v[8] = {5, 5, 5, 5, 5, 5, 5, 5};
    CHECK(((FnGetParam)SLOT(obj, SLOT_GETPARAM))(obj, 1, &v[0], &v[1], &v[2], &v[3]) == -1);
    CHECK(((FnSetParam)SLOT(obj, SLOT_SETPARAM))(obj, 1, 1, 2, 3, 4) == -1);
    CHECK(((FnGetParamLimits)SLOT(obj, SLOT_GETPARAMLIMITS))(obj, 1, &v[0], &v[1], &v[2], &v[3],
                                                            &v[4], &v[5], &v[6], &v[7]) == -1);
    CHECK(v[0] == 5 && v[7] == 5);

    CChannel channel;
    CChannelInit(&channel);
    CHECK(((FnConnect)SLOT(obj, SLOT_CONNECT))(obj, &channel) == 0);
    if (type != 0x1002)
        CHECK(((FnCall)SLOT(obj, SLOT_CALL))(obj, 0x1000, 1, 2, 3, 4) == 0);
    CHECK(channel.callCount == 0);  /* nothing above talks to the device */

    /* No window yet: closing fails with 17 and nothing is open. */
    CHECK(((FnClose)SLOT(obj, SLOT_CLOSEDIALOG))(obj) == 17);
    CHECK(((FnIsOpen)SLOT(obj, SLOT_ISDIALOGOPEN))(obj) == 0);
    CHECK(((FnConnect)SLOT(obj, SLOT_CONNECT))(obj, NULL) == 0);
    DeleteInstance(obj);
}

/* --- dialog-event routes, through the protected slot SignalDlgEvent --- */

static struct {
    int calls;
    void* client;
    void* userData;
    uint32_t event;
} callbackLog;
static struct {
    int calls;
    WPARAM wParam;
    LPARAM lParam;
} windowLog;

static uint32_t EventCallback(void* client, void* userData, uint32_t event) {
    callbackLog.calls++;
    callbackLog.client = client;
    callbackLog.userData = userData;
    callbackLog.event = event;
    return 9;
}

#define EVENT_WINDOW_MSG (WM_APP + 7)
#define EVENT_THREAD_MSG (WM_APP + 8)

static LRESULT CALLBACK EventWindowProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam) {
    if (msg == EVENT_WINDOW_MSG) {
        windowLog.calls++;
        windowLog.wParam = wParam;
        windowLog.lParam = lParam;
        return 5;
    }
    return DefWindowProcA(hwnd, msg, wParam, lParam);
}

static int TakeThreadMessage(void* client, uint32_t event) {
    MSG msg;
    int found = 0;
    while (PeekMessageA(&msg, (HWND)-1, EVENT_THREAD_MSG, EVENT_THREAD_MSG, PM_REMOVE))
        if (msg.wParam == (WPARAM)client && msg.lParam == (LPARAM)event) found++;
    return found;
}

static void TestEventRoutes(void) {
    void* obj = CreateInstance(0x1001);
    FnSignal signal = (FnSignal)SLOT(obj, SLOT_SIGNALDLGEVENT);
    FnSetDlgEventData setData = (FnSetDlgEventData)SLOT(obj, SLOT_SETDLGEVENTDATA);

    CHECK(signal(obj, 0) == 1); /* no route: the dialog would hide */

    WNDCLASSA wc;
    memset(&wc, 0, sizeof wc);
    wc.lpfnWndProc = EventWindowProc;
    wc.hInstance = GetModuleHandleA(NULL);
    wc.lpszClassName = "OndHostEventSink";
    RegisterClassA(&wc);
    HWND sink = CreateWindowA("OndHostEventSink", "", 0, 0, 0, 0, 0, HWND_MESSAGE, NULL,
                              wc.hInstance, NULL);
    CHECK(sink != NULL);

    DlgEventData data;
    memset(&data, 0, sizeof data);
    MSG dummy;
    PeekMessageA(&dummy, NULL, 0, 0, PM_NOREMOVE); /* make sure this thread has a queue */
    data.threadId = GetCurrentThreadId();
    data.threadMsg = EVENT_THREAD_MSG;
    setData(obj, &data);
    CHECK(signal(obj, 1) == 0); /* a post cannot answer */
    CHECK(TakeThreadMessage(obj, 1) == 1);

    data.hWnd = sink;
    data.uMsg = EVENT_WINDOW_MSG;
    setData(obj, &data);
    CHECK(signal(obj, 2) == 5); /* the window's answer */
    CHECK(windowLog.calls == 1 && windowLog.wParam == (WPARAM)obj && windowLog.lParam == 2);
    CHECK(TakeThreadMessage(obj, 2) == 1); /* still posted too */

    data.callback = EventCallback;
    data.userData = &callbackLog;
    setData(obj, &data);
    memset(&data, 0, sizeof data); /* the module keeps a copy */
    CHECK(signal(obj, 0) == 9);    /* all three fire; the callback decides */
    CHECK(callbackLog.calls == 1 && callbackLog.client == obj &&
          callbackLog.userData == &callbackLog && callbackLog.event == 0);
    CHECK(windowLog.calls == 2);
    CHECK(TakeThreadMessage(obj, 0) == 1);

    DestroyWindow(sink);
    DeleteInstance(obj);
}

/* --- the Script Processor through Call --- */

/* The host's element of the variable exchange: 144 bytes, of which the module
   uses the first four fields. */
typedef struct {
    const char* name;
    uint32_t type;
    uint32_t pad;
    uint64_t value;  /* setting: a pointer; reading back: the number itself */
    uint64_t length; /* setting: the low 32 bits; reading back: all 64 */
    uint8_t host[112];
} ScriptVar;
_Static_assert(sizeof(ScriptVar) == 144, "the host's element");

static char scriptOutput[1024];

static void CollectOutput(void* context, const char* text) {
    CHECK(context == (void*)scriptOutput);
    strncat(scriptOutput, text, sizeof scriptOutput - strlen(scriptOutput) - 1);
}

static uint32_t CallSP(void* obj, uint32_t command, uint64_t a, uint64_t b, uint64_t c) {
    return ((FnCall)SLOT(obj, SLOT_CALL))(obj, command, a, b, c, 0);
}

/* Runs a script text (0x1000) or file (0x1001) with its output collected
   into scriptOutput. */
static uint32_t RunCollected(void* sp, uint32_t command, const char* textOrPath) {
    scriptOutput[0] = 0;
    return CallSP(sp, command, (uint64_t)(uintptr_t)textOrPath, (uint64_t)(uintptr_t)CollectOutput,
                  (uint64_t)(uintptr_t)scriptOutput);
}

static void TestScriptProcessorCall(void) {
    void* sp = CreateInstance(0x1002);
    CChannel channel;
    CChannelInit(&channel);
    ((FnConnect)SLOT(sp, SLOT_CONNECT))(sp, &channel);

    /* Variables in: numbers by pointer, a string by pointer and 32-bit length. */
    uint64_t count = 41, wide = (uint64_t)-2;
    ScriptVar set[3];
    memset(set, 0xCD, sizeof set);
    set[0].name = "Count";
    set[0].type = 1;
    set[0].value = (uint64_t)(uintptr_t)&count;
    set[1].name = "Label";
    set[1].type = 2;
    set[1].value = (uint64_t)(uintptr_t)"abcdef";
    memcpy(&set[1].length, &(uint32_t){3}, 4);
    set[2].name = "Wide";
    set[2].type = 5;
    set[2].value = (uint64_t)(uintptr_t)&wide;
    CHECK(CallSP(sp, 0x1002, (uint64_t)(uintptr_t)set, 3, 0) == 0);

    /* Script text, output through a C function. */
    const char* text = "print(Label, Count + 1, \"\\n\"); Count = Count * 2; Label = Label + \"!\"; Wide = Wide - 1;";
    CHECK(RunCollected(sp, 0x1000, text) == 0);
    CHECK(strcmp(scriptOutput, "abc42\n") == 0);
    CHECK(channel.callCount == 2 && channel.calls[0].slot == 11 && channel.calls[1].slot == 13);
    CHECK(channel.calls[0].args[0] == (uint64_t)(uintptr_t)sp && channel.calls[0].args[1] == 500);

    /* Variables back: the values themselves, case-insensitive names. */
    ScriptVar get[3];
    memset(get, 0, sizeof get);
    get[0].name = "COUNT";
    get[1].name = "label";
    get[2].name = "wide";
    uint32_t found = 0;
    CHECK(CallSP(sp, 0x1003, (uint64_t)(uintptr_t)get, 3, (uint64_t)(uintptr_t)&found) == 0);
    CHECK(found == 3);
    CHECK(get[0].type == 1 && (uint32_t)get[0].value == 82);
    CHECK(get[1].type == 2 && get[1].length == 4 &&
          memcmp((const char*)(uintptr_t)get[1].value, "abc!", 4) == 0);
    CHECK(get[2].type == 5 && (int64_t)get[2].value == -3);

    /* A script file: the channel is locked once for the whole call. */
    char path[MAX_PATH + 32];
    DWORD n = GetTempPathA(MAX_PATH, path);
    CHECK(n > 0 && n < MAX_PATH);
    strcat(path, "ond_host_c_test.dcs");
    FILE* f = fopen(path, "wb");
    CHECK(f != NULL && fputs("print(\"file \", Count);\r\n", f) >= 0 && fclose(f) == 0);
    channel.callCount = 0;
    CHECK(RunCollected(sp, 0x1001, path) == 0);
    CHECK(strcmp(scriptOutput, "file 82") == 0);
    CHECK(channel.callCount == 2 && channel.calls[0].slot == 11 && channel.calls[1].slot == 13);
    CHECK(channel.lockDepth == 0);
    remove(path);

    /* A failing script and a missing file. */
    CHECK(CallSP(sp, 0x1000, (uint64_t)(uintptr_t)"print(1 / 0);", 0, 0) == 21);
    CHECK(CallSP(sp, 0x1001, (uint64_t)(uintptr_t)path, 0, 0) == 8);
    CHECK(CallSP(sp, 0x1001, (uint64_t)(uintptr_t)"", 0, 0) == 6);
    DeleteInstance(sp);
}

/* --- the operator's questions and a deep recursion, through Call --- */

/* A question of the script, as the operator sees it: a dialog with the
   script's caption, found and answered from another thread while the host's
   own thread is inside Call. */
typedef struct {
    const char* caption;
    const char* typed;     /* into the number field (4058); null: a message box */
    char seen[128];        /* the message box's text */
    volatile LONG answered;
} Question;

static BOOL CALLBACK FindStaticText(HWND child, LPARAM out) {
    char cls[32] = "", text[128] = "";
    GetClassNameA(child, cls, sizeof cls);
    GetWindowTextA(child, text, sizeof text);
    if (_stricmp(cls, "Static") == 0 && text[0]) {
        strcpy((char*)out, text);
        return FALSE;
    }
    return TRUE;
}

static DWORD WINAPI AnswerQuestions(void* p) {
    Question* questions = (Question*)p;
    for (int round = 0; round < 1500; ++round) { /* of 20 ms */
        Question* q = questions;
        while (q->caption && q->answered) ++q;
        if (!q->caption) return 0;
        HWND box = FindWindowA("#32770", q->caption);
        if (box && IsWindowVisible(box)) {
            Sleep(200); /* let it finish its initialisation */
            if (q->typed) SetDlgItemTextA(box, 4058, q->typed);
            else EnumChildWindows(box, FindStaticText, (LPARAM)q->seen);
            q->answered = 1;
            PostMessageA(box, WM_COMMAND, IDOK, 0);
        }
        Sleep(20);
    }
    return 0;
}

static void TestOperatorAndDepthThroughCall(void) {
    void* sp = CreateInstance(0x1002);
    CChannel channel;
    CChannelInit(&channel);
    ((FnConnect)SLOT(sp, SLOT_CONNECT))(sp, &channel);

    /* The module's own dialogs ask, on the host's thread, without an owner. */
    Question questions[] = {{"Serial number", "1234", "", 0}, {"Done", NULL, "", 0}, {NULL, NULL, "", 0}};
    HANDLE helper = CreateThread(NULL, 0, AnswerQuestions, questions, 0, NULL);
    const char* asks =
        "var dword v; var dword ok;\n"
        "v = userinputdword(\"Serial number\", \"From 1 to 9999\", 7, 1, 9999, &ok);\n"
        "messagebox(\"Done\", \"got \" + numtostr(v));\n"
        "print(v, \" \", ok, \"\\n\");\n";
    CHECK(RunCollected(sp, 0x1000, asks) == 0);
    WaitForSingleObject(helper, 40000);
    CloseHandle(helper);
    CHECK(questions[0].answered && questions[1].answered);
    CHECK(strcmp(questions[1].seen, "got 1234") == 0);
    CHECK(strcmp(scriptOutput, "1234 1\n") == 0);

    /* A thousand calls deep on the host's thread; far deeper a clean failure. */
    const char* f = "func f(var int64 n) { var int64 r; var string s; r = 0;"
                    " if (n > 0) { r = 1 + f(n - 1); } f = r; }\n";
    char text[256];
    snprintf(text, sizeof text, "%sprint(f(1000));", f);
    CHECK(RunCollected(sp, 0x1000, text) == 0 && strcmp(scriptOutput, "1000") == 0);
    snprintf(text, sizeof text, "%sprint(f(1000000));", f);
    CHECK(RunCollected(sp, 0x1000, text) == 21);
    CHECK(strncmp(scriptOutput, "out of memory error near line ", 30) == 0);
    DeleteInstance(sp);
}

/* An object the module did not make answers another type and is left alone. */
static int foreignTouched;
static uint32_t ForeignType(void* self) { (void)self; return 0x2000; }
static void ForeignOther(void* self) { (void)self; foreignTouched++; }

static void TestForeignObjectIsNotDeleted(void) {
    void* table[16];
    table[0] = (void*)ForeignType;
    for (int i = 1; i < 16; ++i) table[i] = (void*)ForeignOther;
    Object foreign = {table};
    DeleteInstance(&foreign);
    CHECK(foreignTouched == 0);
}

int main(void) {
    HMODULE dll = LoadLibraryA("OndDeviceClient.dll");
    if (!dll) {
        printf("FAILED: cannot load OndDeviceClient.dll (error %lu)\n", GetLastError());
        return 1;
    }
    GetNumObj = (FnGetNumObj)(void*)GetProcAddress(dll, "OndDeviceClientGetNumObj");
    GetObjType = (FnGetObjType)(void*)GetProcAddress(dll, "OndDeviceClientGetObjType");
    GetObjInfo = (FnGetObjInfo)(void*)GetProcAddress(dll, "OndDeviceClientGetObjInfo");
    CreateInstance = (FnCreateInstance)(void*)GetProcAddress(dll, "OndDeviceClientCreateInstance");
    DeleteInstance = (FnDeleteInstance)(void*)GetProcAddress(dll, "OndDeviceClientDeleteInstance");
    if (!GetNumObj || !GetObjType || !GetObjInfo || !CreateInstance || !DeleteInstance) {
        printf("FAILED: an export is missing\n");
        return 1;
    }

    TestExports();
    for (uint32_t type = 0x1000; type <= 0x1002; ++type) TestCommonSlots(type);
    TestEventRoutes();
    TestScriptProcessorCall();
    TestOperatorAndDepthThroughCall();
    TestForeignObjectIsNotDeleted();

    FreeLibrary(dll);
    printf("%d passed, %d failed\n", passed, failed);
    return failed != 0;
}

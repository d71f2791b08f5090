// Symbol visibility for the module's exported classes, and the two Windows
// handle types that appear in the host-facing interfaces. Declared here the way
// <windows.h> declares them, so the portable core never includes it.
#pragma once

#if defined(_WIN32) && defined(OND_BUILDING_DLL)
#define ONX_EXPORT __declspec(dllexport)
#elif defined(_WIN32) && defined(OND_USING_DLL)
#define ONX_EXPORT __declspec(dllimport)
#else
#define ONX_EXPORT
#endif

struct HWND__;
typedef struct HWND__* HWND;

// The system calls of the code under test: noted, made to fail, and what they create counted.
#ifndef TESSARY_TESTS_WATERMARK_SYSTEM_CALLS_H
#define TESSARY_TESTS_WATERMARK_SYSTEM_CALLS_H

#include <windows.h>

#include <commdlg.h>

#include <functional>
#include <string>

namespace tsypr::test
{

// Makes the nth next call of the function, counted from 1, fail.
void FailCall(const std::string& function, int n = 1);

// Where the calls are noted from now on, each as its name and a blank; null: nowhere.
void NoteCalls(std::string* calls);

// The objects and device contexts that were made and not given back.
size_t LiveObjects();
bool IsLive(HGDIOBJ object);

// Dots per inch that every screen claims to have; 0: what it has.
extern int g_dotsPerInch;

// Stands in for the system's font dialog; none: the library lacks it.
extern std::function<BOOL(CHOOSEFONTW&)> g_chooseFont;

} // namespace tsypr::test

#endif

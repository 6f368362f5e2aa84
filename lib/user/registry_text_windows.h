// Texts of the machine's registry. For the files of this folder only.
#ifndef TESSARY_LIB_USER_REGISTRY_TEXT_WINDOWS_H
#define TESSARY_LIB_USER_REGISTRY_TEXT_WINDOWS_H

#include <string>

namespace tsypr
{

// Reads a text below HKEY_LOCAL_MACHINE, without its terminator and with variables in it replaced. Returns false, with
// `text` empty, when there is none or it is longer than any path. Throws std::bad_alloc only.
bool ReadMachineText(const wchar_t* subkey, const wchar_t* name, std::wstring& text);

} // namespace tsypr

#endif

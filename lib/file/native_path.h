// Paths as the system takes them. For the files of this folder only.
#ifndef TESSARY_LIB_FILE_NATIVE_PATH_H
#define TESSARY_LIB_FILE_NATIVE_PATH_H

#include <cstdint>
#include <string>

namespace tsypr
{

// The system's own error code, a Windows error or an errno; 0 is success.
using SystemError = uint32_t;

#ifdef _WIN32
using NativePath = std::wstring; // complete, behind "\\?\", with backslashes only
#else
using NativePath = std::string; // as given
#endif
using NativeChar = NativePath::value_type;

// The code for an invalid argument when the path is null, empty or not well-formed UTF-8. May throw for want of memory.
SystemError ToNativePath(const char* path, NativePath& native);

// The name as UTF-8. On Windows a lone surrogate becomes U+FFFD; elsewhere the bytes are taken as they are.
std::string ToUtf8(const NativePath& name);

// The folder that an entry is in: "." for a plain name, empty for a root. Separators at the end do not count.
NativePath ParentOf(const NativePath& path);

// The last part of a path; empty for a root.
NativePath NameOf(const NativePath& path);

NativePath JoinPath(const NativePath& folder, const NativePath& name);

} // namespace tsypr

#endif

#include "bench/scratch_folder.h"

#include <windows.h>

#include <string>

namespace tsypr::bench
{

ScratchFolder::ScratchFolder()
    : m_path(std::filesystem::temp_directory_path() / (L"tessary-bench-" + std::to_wstring(GetCurrentProcessId())))
{
    std::filesystem::create_directory(m_path);
}

ScratchFolder::~ScratchFolder()
{
    std::error_code error;
    std::filesystem::remove_all(m_path, error);
}

} // namespace tsypr::bench

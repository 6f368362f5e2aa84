#include "lib/file/read_file.h"

#include <cstdio>
#include <memory>

namespace tsypr
{
namespace
{

struct CloseFile
{
    void operator()(std::FILE* file) const noexcept
    {
        std::fclose(file);
    }
};

} // namespace

bool ReadWholeFile(const char* path, size_t maxBytes, std::string& out) noexcept
{
    out.clear();
    try
    {
        const std::unique_ptr<std::FILE, CloseFile> file(path != nullptr ? std::fopen(path, "rbe") : nullptr);
        if (file == nullptr)
        {
            return false;
        }
        char block[4096];
        size_t count = 0;
        while ((count = std::fread(block, 1, sizeof(block), file.get())) != 0 && out.size() + count <= maxBytes)
        {
            out.append(block, count);
        }
        if (count != 0 || std::ferror(file.get()) != 0)
        {
            out.clear();
            return false;
        }
        return true;
    }
    catch (...)
    {
        out.clear();
        return false;
    }
}

} // namespace tsypr

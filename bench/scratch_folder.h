// A folder for the files of one measurement.
#ifndef TESSARY_BENCH_SCRATCH_FOLDER_H
#define TESSARY_BENCH_SCRATCH_FOLDER_H

#include <filesystem>

namespace tsypr::bench
{

// A folder of our own below the temporary folder, removed with all it holds.
class ScratchFolder
{
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& Path() const noexcept
    {
        return m_path;
    }

private:
    std::filesystem::path m_path;
};

} // namespace tsypr::bench

#endif

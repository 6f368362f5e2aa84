// What the measured code finds around it: registry values, an application data folder, printers.
#ifndef TESSARY_BENCH_SURROUNDINGS_H
#define TESSARY_BENCH_SURROUNDINGS_H

#include "bench/registry_value.h"
#include "bench/scratch_folder.h"

#include <filesystem>
#include <list>

namespace tsypr::bench
{

// Sets everything up from the folder of this program, and puts the registry back at the end.
class Surroundings
{
public:
    Surroundings();
    ~Surroundings();
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

    // Empty at the start, for files of the benchmark's own.
    const std::filesystem::path& Folder() const noexcept
    {
        return m_scratch.Path();
    }
    // Where the module puts its log files.
    std::filesystem::path LogFolder() const
    {
        return m_scratch.Path() / L"logs";
    }

private:
    ScratchFolder m_scratch;
    std::list<RegistryValue> m_values;
};

// Deletes the files in a folder, which may be missing.
void EmptyFolder(const std::filesystem::path& folder);

} // namespace tsypr::bench

#endif

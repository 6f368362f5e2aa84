#include "lib/log/log_retention.h"

#include "lib/file/append_file.h"
#include "lib/file/operations.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace tsypr
{
namespace
{

constexpr size_t kMostTries = 100;
constexpr std::string_view kSuffix = ".log";

#ifdef _WIN32
constexpr char kSeparators[] = "\\/";
#else
constexpr char kSeparators[] = "/";
#endif

bool IsWordEnd(char c) noexcept
{
    return c == '_' || c == '-' || c == '.' || c == ' ';
}

// "print_ui_" of "print_ui_2024-03-05.log" and the tag "ui"; empty when the tag is not in the name as a word.
std::string_view CommonPart(std::string_view name, const std::string& tag)
{
    const std::string word = tag + "_";
    size_t place = name.rfind(word);
    while (place != std::string_view::npos && place != 0 && !IsWordEnd(name[place - 1]))
    {
        place = name.rfind(word, place - 1);
    }
    return place == std::string_view::npos ? std::string_view{} : name.substr(0, place + word.size());
}

// The name without the number that a rotation gave it.
std::string_view WithoutNumber(std::string_view name) noexcept
{
    const size_t last = name.find_last_not_of("0123456789");
    const bool numbered = last != std::string_view::npos && name[last] == '.' && last + 1 != name.size();
    return numbered ? name.substr(0, last) : name;
}

// The files of the tag, the oldest first.
std::vector<DirectoryEntry> ListLogs(const std::string& folder, std::string_view common)
{
    std::vector<DirectoryEntry> entries;
    if (!ListDirectory(folder.c_str(), entries).Ok())
    {
        return {};
    }
    std::erase_if(entries,
                  [common](const DirectoryEntry& entry)
                  {
                      return entry.status.kind != FileKind::File || !entry.name.starts_with(common) ||
                             !WithoutNumber(entry.name).ends_with(kSuffix);
                  });
    std::ranges::stable_sort(entries, {}, [](const DirectoryEntry& entry) { return entry.status.modifiedMs; });
    return entries;
}

} // namespace

void RemoveOldLogs(const std::string& path, const std::string& tag, uint32_t keep)
{
    const size_t separator = path.find_last_of(kSeparators);
    const std::string folder = separator == std::string::npos ? "./" : path.substr(0, separator + 1);
    const std::string_view name = std::string_view(path).substr(separator + 1);
    const std::string_view common = CommonPart(name, tag);
    if (keep == 0 || common.empty())
    {
        return;
    }
    const std::vector<DirectoryEntry> logs = ListLogs(folder, common);
    size_t surplus = logs.size() > keep ? logs.size() - keep : 0;
    size_t tries = 0;
    for (auto log = logs.begin(); log != logs.end() && surplus != 0 && tries != kMostTries; ++log)
    {
        if (WithoutNumber(log->name) == name)
        {
            continue;
        }
        ++tries;
        const std::string file = folder + log->name;
        if (RemoveUnusedFile(file.c_str()))
        {
            --surplus;
            RemoveUnusedFile((file + ".lock").c_str()); // of its rotation, if there was any
        }
    }
}

} // namespace tsypr

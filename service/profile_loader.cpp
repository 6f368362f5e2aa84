#include "service/profile_loader.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "service/profile_parser.h"
#include "service/text.h"

namespace tsypr::service
{

namespace
{

namespace fs = std::filesystem;

// Far beyond any real printer; keeps a stray file from filling the host process.
constexpr std::uintmax_t kLargestFile = 1024 * 1024;

std::string Utf8(const fs::path& path)
{
    try
    {
        const std::u8string text = path.u8string();
        return {text.begin(), text.end()};
    }
    catch (const fs::filesystem_error&)
    {
        // A name that is no valid Unicode.
        return "?";
    }
}

struct ProfileFile
{
    std::string name;
    fs::path path;
};

bool IsProfileName(const fs::path& path)
{
    std::string extension = Utf8(path.extension());
    std::ranges::transform(extension,
                           extension.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return extension == ".json";
}

std::vector<ProfileFile> ListFiles(const fs::path& directory, std::vector<ProfileProblem>& problems)
{
    std::vector<ProfileFile> files;
    std::error_code error;
    fs::directory_iterator entry(directory, error);
    while (!error && entry != fs::directory_iterator())
    {
        if (IsProfileName(entry->path()))
        {
            files.push_back({Utf8(entry->path().filename()), entry->path()});
        }
        entry.increment(error);
    }
    if (error)
    {
        problems.push_back({Utf8(directory), "", "the directory cannot be read"});
    }
    std::ranges::sort(files, {}, &ProfileFile::name);
    return files;
}

// The file's content, or the reason why there is none.
std::optional<std::string> ReadFile(const fs::path& path, std::string& reason)
{
    std::error_code error;
    const std::uintmax_t size = fs::file_size(path, error);
    if (error)
    {
        reason = "cannot be read";
        return std::nullopt;
    }
    if (size > kLargestFile)
    {
        reason = "is larger than 1 MB";
        return std::nullopt;
    }
    std::string content(static_cast<std::size_t>(size), '\0');
    std::ifstream stream(path, std::ios::binary);
    if (!stream.read(content.data(), static_cast<std::streamsize>(content.size())))
    {
        reason = "cannot be read";
        return std::nullopt;
    }
    return content;
}

void LoadFile(const ProfileFile& file, ProfileSet& set)
{
    std::string reason;
    const std::optional<std::string> content = ReadFile(file.path, reason);
    if (!content)
    {
        set.problems.push_back({file.name, "", reason});
        return;
    }
    std::optional<Profile> profile = ParseProfile(*content, file.name, set.problems);
    if (!profile)
    {
        return;
    }
    if (std::ranges::find(set.printers, profile->name, &Profile::name) != set.printers.end())
    {
        set.problems.push_back({file.name, "name", "is taken by an earlier file"});
        return;
    }
    set.printers.push_back(std::move(*profile));
}

} // namespace

const Profile* ProfileSet::Find(std::u16string_view name) const
{
    for (const Profile& profile : printers)
    {
        if (Utf16FromUtf8(profile.name) == name)
        {
            return &profile;
        }
    }
    return nullptr;
}

ProfileSet LoadProfiles(const fs::path& directory)
{
    ProfileSet set;
    for (const ProfileFile& file : ListFiles(directory, set.problems))
    {
        LoadFile(file, set);
    }
    return set;
}

} // namespace tsypr::service

// Files of the installation. Every change takes an undo log and can be taken back.
#ifndef TESSARY_PRINTCTL_FILES_H
#define TESSARY_PRINTCTL_FILES_H

#include "tools/printctl/undo_log.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tsypr::printctl
{

namespace fs = std::filesystem;

// A path as messages show it.
std::string Shown(const fs::path& path);

bool IsFile(const fs::path& path) noexcept;

// The whole file; a Failure with ExitCode::BadFile when it cannot be read or is larger than 16 MiB.
std::vector<uint8_t> ReadWholeFile(const fs::path& path);

// Creates or replaces a file.
void WriteWholeFile(const fs::path& path, const void* bytes, size_t size);

// True when both files can be read and hold the same bytes.
bool SameContent(const fs::path& left, const fs::path& right);

// Puts a copy of source, or the given text, at target. A file there is moved aside first, so that one in use is
// replaced as well. A target that holds the same bytes already is left alone.
void InstallFile(UndoLog& undo, const fs::path& source, const fs::path& target);
void InstallText(UndoLog& undo, std::string_view text, const fs::path& target);

// Deletes a file if it is there.
void RemoveFile(UndoLog& undo, const fs::path& target);

// For a target to which somebody else is about to copy source: moves a different file there aside, as InstallFile does.
// On failure the present state comes back.
void MakeRoom(UndoLog& undo, const fs::path& source, const fs::path& target);

// Creates a folder and the folders above it as far as they are missing.
void CreateFolders(UndoLog& undo, const fs::path& folder);

} // namespace tsypr::printctl

#endif

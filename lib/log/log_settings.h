// What LogStart reads out of the settings dictionary.
#ifndef TESSARY_LIB_LOG_LOG_SETTINGS_H
#define TESSARY_LIB_LOG_LOG_SETTINGS_H

#include "lib/string/dictionary.h"

#include <cstdint>

namespace tsypr
{

// docs/logging.md explains each of them; 0 switches off what a number controls.
struct LogSettings
{
    int level;
    const char* file; // null: no output; belongs to the dictionary
    bool ownFile;
    uint32_t rotateBytes;
    uint32_t keepRotated; // 0: nothing of a full file is kept
    uint32_t keepFiles;
    uint32_t throttleLines;
    uint32_t throttleSeconds;
};

// What is missing, not a number or out of range has its default.
LogSettings ReadLogSettings(const Dictionary& settings) noexcept;

} // namespace tsypr

#endif

#include "lib/log/log_settings.h"

#include "lib/log/log.h"

namespace tsypr
{

LogSettings ReadLogSettings(const Dictionary& settings) noexcept
{
    constexpr uint32_t kMostRotated = 999;
    constexpr uint32_t kMostSeconds = 24 * 60 * 60;
    const int level = LogLevelFromName(settings.Get(kLogFileLevelKey));
    return {level < 0 ? kLogInfo : level,
            settings.Get(kLogFileNameKey),
            settings.GetUint32(kLogOwnFileKey, 0, 0, 1) != 0,
            settings.GetUint32(kLogRotateBytesKey, 10 * 1024 * 1024),
            settings.GetUint32(kLogKeepRotatedKey, 5, 0, kMostRotated),
            settings.GetUint32(kLogKeepFilesKey, 50),
            settings.GetUint32(kLogThrottleLinesKey, 500),
            settings.GetUint32(kLogThrottleSecondsKey, 10, 0, kMostSeconds)};
}

} // namespace tsypr

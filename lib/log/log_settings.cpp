#include "lib/log/log_settings.h"

#include "lib/log/log.h"

#include <charconv>
#include <string_view>
#include <system_error>

namespace tsypr
{
namespace
{

uint32_t ReadNumber(const Dictionary& settings, const char* key, uint32_t otherwise, uint32_t most) noexcept
{
    const char* text = settings.Get(key);
    if (text == nullptr)
    {
        return otherwise;
    }
    const std::string_view digits = text;
    uint32_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc() && end == digits.data() + digits.size() && number <= most ? number : otherwise;
}

} // namespace

LogSettings ReadLogSettings(const Dictionary& settings) noexcept
{
    constexpr uint32_t kMostRotated = 999;
    constexpr uint32_t kMostSeconds = 24 * 60 * 60;
    const int level = LogLevelFromName(settings.Get(kLogFileLevelKey));
    return {level < 0 ? kLogInfo : level,
            settings.Get(kLogFileNameKey),
            ReadNumber(settings, kLogOwnFileKey, 0, 1) != 0,
            ReadNumber(settings, kLogRotateBytesKey, 10 * 1024 * 1024, UINT32_MAX),
            ReadNumber(settings, kLogKeepRotatedKey, 5, kMostRotated),
            ReadNumber(settings, kLogKeepFilesKey, 50, UINT32_MAX),
            ReadNumber(settings, kLogThrottleLinesKey, 500, UINT32_MAX),
            ReadNumber(settings, kLogThrottleSecondsKey, 10, kMostSeconds)};
}

} // namespace tsypr

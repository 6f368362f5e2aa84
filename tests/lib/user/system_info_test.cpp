#include "lib/user/system_info.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>

namespace tsypr
{
namespace
{

std::vector<std::string> LinesOf(const SystemInfo& info)
{
    std::vector<std::string> lines;
    WriteSystemInfo(
        info,
        [](void* context, const char* line) { static_cast<std::vector<std::string>*>(context)->emplace_back(line); },
        &lines);
    return lines;
}

TEST(SystemInfo, IsKnownHere)
{
    const SystemInfo info = ReadSystemInfo();
    for (const std::string& text : {info.hostName, info.userName, info.osName, info.osVersion, info.osBuild})
    {
        EXPECT_THAT(text, testing::AllOf(testing::Ne(kUnknownText), testing::Ne("")));
    }
    EXPECT_EQ(info.architecture, "x86-64");
    EXPECT_EQ(info.processorCount, std::thread::hardware_concurrency());
    EXPECT_GT(info.memoryBytes, 64U << 20);
    const std::time_t now = std::time(nullptr);
    std::tm utc = *std::gmtime(&now); // NOLINT(concurrency-mt-unsafe)
    utc.tm_isdst = -1;
    // The difference that local time makes of the same fields; daylight saving time may begin in between.
    EXPECT_NEAR(info.utcOffsetMinutes, static_cast<double>(now - std::mktime(&utc)) / 60, 60);
    EXPECT_EQ(LinesOf(info).size(), 4U);
}

TEST(SystemInfo, IsWrittenAsLines)
{
    EXPECT_THAT(LinesOf(SystemInfo()),
                testing::ElementsAre("host unknown, user unknown",
                                     "system unknown, version unknown, build unknown",
                                     "processor unknown, 0 logical, memory 0 MiB",
                                     "time zone unknown, UTC+00:00"));
    SystemInfo info;
    info.hostName = "HR-PC-0815";
    info.userName = std::string(2000, 'x');
    info.memoryBytes = 16ULL << 30;
    info.utcOffsetMinutes = -210;
    const std::vector<std::string> lines = LinesOf(info);
    EXPECT_EQ(lines[0].substr(0, 22), "host HR-PC-0815, user ");
    EXPECT_EQ(lines[2], "processor unknown, 0 logical, memory 16384 MiB");
    EXPECT_EQ(lines[3], "time zone unknown, UTC-03:30");
    WriteSystemInfo(info, nullptr, nullptr);
}

} // namespace
} // namespace tsypr

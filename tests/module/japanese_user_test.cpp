// Programs that are run once more as a Japanese user: where the system does not know the locale, it would be the same
// run again.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string_view>

#include <windows.h>

TEST(Locale, IsTheOneOfTheRun)
{
    const char* const wanted = std::getenv("LC_ALL"); // NOLINT(concurrency-mt-unsafe)
    if (wanted != nullptr && std::string_view(wanted).starts_with("ja_JP"))
    {
        EXPECT_EQ(GetACP(), 932U);
        EXPECT_EQ(GetUserDefaultUILanguage(), 0x0411);
    }
}

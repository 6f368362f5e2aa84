#include "lib/file/append_file.h"
#include "lib/file/read_file.h"
#include "lib/string/text_buffer.h"
#include "tests/lib/test_files.h"

#include <gtest/gtest.h>

namespace tsypr::test
{
namespace
{

TEST(TextBuffer, GrowsWithoutLosingAnything)
{
    // Piece lengths that meet the end of the first room exactly, by one less and by one more, and leap far over it.
    for (const size_t piece : {1U, 7U, 512U, 1023U, 1024U, 1025U, 100'000U})
    {
        TextBuffer buffer;
        std::string expected;
        for (char c = 'a'; expected.size() < 5000 || c == 'b'; c = c == 'z' ? 'a' : static_cast<char>(c + 1))
        {
            buffer.Append(std::string(piece, c));
            buffer.AppendFill('-', piece / 2);
            expected.append(piece, c).append(piece / 2, '-');
        }
        EXPECT_EQ(buffer.View(), expected) << piece;
        EXPECT_FALSE(buffer.Cut());
        buffer.Truncate(3);
        buffer.Truncate(10);
        EXPECT_EQ(buffer.View(), expected.substr(0, 3));
    }
}

TEST(Files, AppendersOfOneFileDoNotOverwriteEachOther)
{
    const ScratchFolder folder("append");
    const std::filesystem::path path =
        folder / "logs" / u8"pr\u00FCf-\u65E5\u672C.log"; // its folder is made on the way
    AppendFile first;
    AppendFile second;
    ASSERT_TRUE(first.Open(Utf8(path).c_str()));
    ASSERT_TRUE(second.Open(Utf8(path).c_str()));
    EXPECT_TRUE(first.Append("one ", 4));
    EXPECT_TRUE(second.Append("two ", 4));
    EXPECT_TRUE(first.Append("three", 5));
    std::filesystem::rename(path, folder / "renamed.log"); // as a tool that tidies up may do meanwhile
    EXPECT_TRUE(second.Append(".", 1));
    first.Close();
    EXPECT_FALSE(first.Append("x", 1));

    std::string text;
    const std::string renamed = Utf8(folder / "renamed.log");
    EXPECT_TRUE(ReadWholeFile(renamed.c_str(), 14, text));
    EXPECT_EQ(text, "one two three.");
    EXPECT_FALSE(ReadWholeFile(renamed.c_str(), 13, text));
    EXPECT_EQ(text, "");
    EXPECT_FALSE(ReadWholeFile(Utf8(folder / "none").c_str(), 100, text));
    EXPECT_FALSE(ReadWholeFile(Utf8(folder.path).c_str(), 100, text));
    EXPECT_FALSE(ReadWholeFile(nullptr, 100, text));
}

} // namespace
} // namespace tsypr::test

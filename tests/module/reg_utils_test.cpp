#include "module/reg_utils.h"

#include "lib/log/log.h"
#include "module/malloc_ptr.h"
#include "tests/lib/test_files.h"
#include "tests/module/test_registry.h"

#include <gtest/gtest.h>

#include <optional>

namespace tsypr::test
{
namespace
{

class RegUtilsTest : public testing::Test
{
protected:
    RegUtilsTest() : m_folder("registry")
    {
        Dictionary settings;
        settings.Set(kLogFileNameKey, Utf8(m_folder / "log"));
        LogStart("test", settings);
    }
    ~RegUtilsTest() override
    {
        LogStop();
    }

    // The last log line, without time and origin.
    std::string LastMessage() const
    {
        const std::vector<std::string> lines = ReadLines(m_folder / "log");
        return lines.empty() ? "" : lines.back().substr(25);
    }

    static std::optional<std::string> ReadNarrow(const char* name)
    {
        char* text = nullptr;
        const bool read = RegUtils::ReadStringValueA(HKEY_LOCAL_MACHINE, kDriverKey, name, &text);
        const MallocPtr<char> owner(text);
        EXPECT_EQ(read, text != nullptr);
        return read ? std::optional<std::string>(text) : std::nullopt;
    }
    static std::optional<std::wstring> ReadWide(const wchar_t* name, DWORD* bytes = nullptr)
    {
        wchar_t* text = nullptr;
        const bool read = RegUtils::ReadStringValueW(HKEY_LOCAL_MACHINE, kDriverKeyW, name, &text, bytes);
        const MallocPtr<wchar_t> owner(text);
        EXPECT_EQ(read, text != nullptr);
        return read ? std::optional<std::wstring>(text) : std::nullopt;
    }

    ScratchFolder m_folder;
    TestRegistry m_registry;
};

TEST_F(RegUtilsTest, PoliciesAreLookedUpInOrder)
{
    struct Place
    {
        HKEY root;
        const wchar_t* key;
        const char* logged;
    };
    const Place places[] = {{HKEY_CURRENT_USER, kPolicyKeyW, kDriverPolicyKey},
                            {HKEY_CURRENT_USER, kLegacyPolicyKeyW, kLegacyDriverPolicyKey},
                            {HKEY_LOCAL_MACHINE, kPolicyKeyW, kDriverPolicyKey},
                            {HKEY_LOCAL_MACHINE, kLegacyPolicyKeyW, kLegacyDriverPolicyKey}};
    // For every set of places that hold the policy (bit i: places[i]) the place that wins, -1 for none.
    constexpr int kWithFallback[] = {-1, 0, 1, 0, 2, 0, 1, 0, 3, 0, 1, 0, 2, 0, 1, 0};
    constexpr int kWithoutFallback[] = {-1, 0, -1, 0, 2, 0, 2, 0, -1, 0, -1, 0, 2, 0, 2, 0};
    for (const bool fallback : {true, false})
    {
        m_registry.SetText(kProductKey, L"FallbackToLegacyGPO", fallback ? L"true" : L"false");
        for (unsigned set = 0; set < 16; ++set)
        {
            for (unsigned i = 0; i < 4; ++i)
            {
                RegDeleteKeyValueW(places[i].root, places[i].key, L"MaxDPILevel");
                if ((set >> i & 1) != 0)
                {
                    m_registry.SetDword(places[i].root, places[i].key, L"MaxDPILevel", 10 + i);
                }
            }
            const int winner = fallback ? kWithFallback[set] : kWithoutFallback[set];
            DWORD value = 99;
            EXPECT_EQ(RegUtils::ReadGPODwordValue("MaxDPILevel", 4, &value), winner >= 0) << fallback << ' ' << set;
            EXPECT_EQ(value, winner >= 0 ? 10U + static_cast<unsigned>(winner) : 4U) << fallback << ' ' << set;
            const std::string expected =
                winner >= 0 ? std::string("RegUtils::ReadGPODwordValue, succeeded to read GPO [MaxDPILevel] from [") +
                                  places[winner].logged + "]."
                            : std::string("RegUtils::ReadGPODwordValue, failed to read GPO [MaxDPILevel] from [") +
                                  (fallback ? kLegacyDriverPolicyKey : kDriverPolicyKey) + "].";
            const std::string line = LastMessage();
            EXPECT_TRUE(line.starts_with(winner >= 0 ? "info " : "error ") && line.ends_with(" " + expected)) << line;
        }
    }
}

TEST_F(RegUtilsTest, FallbackIsOnUnlessSomeoneSaysOtherwise)
{
    struct Case
    {
        const wchar_t* policy; // null: not set
        const wchar_t* product;
        bool expected;
    };
    const Case cases[] = {
        {nullptr, nullptr, true},
        {nullptr, L"true", true},
        {nullptr, L"TRUE", true},
        {nullptr, L"True", true},
        {nullptr, L"tRuE", true},
        {nullptr, L"1", false},
        {nullptr, L"yes", false},
        {nullptr, L"false", false},
        {nullptr, L"", false},
        {nullptr, L"true ", false},
        {nullptr, L" true", false},
        {nullptr, L"trues", false},
        {nullptr, L"tru", false},
        {L"true", L"false", true},
        {L"false", L"true", false},
        {L"", L"true", false},
        {L"TRUE", nullptr, true},
        {L"no", nullptr, false},
    };
    for (const Case& c : cases)
    {
        for (const auto& [key, value] : {std::pair{kProductPolicyKey, c.policy}, std::pair{kProductKey, c.product}})
        {
            RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, key, L"FallbackToLegacyGPO");
            if (value != nullptr)
            {
                m_registry.SetText(key, L"FallbackToLegacyGPO", value);
            }
        }
        EXPECT_EQ(RegUtils::IsFallbackToLegacyGPO(), c.expected)
            << testing::PrintToString(c.policy) << ' ' << testing::PrintToString(c.product);
    }
    // Of several strings the first counts; a value of another type is none.
    RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kProductPolicyKey, L"FallbackToLegacyGPO");
    m_registry.SetText(kProductKey, L"FallbackToLegacyGPO", std::wstring_view(L"true\0false\0", 11), REG_MULTI_SZ);
    EXPECT_TRUE(RegUtils::IsFallbackToLegacyGPO());
    m_registry.SetText(kProductPolicyKey, L"FallbackToLegacyGPO", std::wstring_view(L"0\0true\0", 7), REG_MULTI_SZ);
    EXPECT_FALSE(RegUtils::IsFallbackToLegacyGPO());
    m_registry.SetDword(HKEY_LOCAL_MACHINE, kProductPolicyKey, L"FallbackToLegacyGPO", 0);
    EXPECT_TRUE(RegUtils::IsFallbackToLegacyGPO());
    // The user's hive has no say in it.
    RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kProductKey, L"FallbackToLegacyGPO");
    RegSetKeyValueW(HKEY_CURRENT_USER, kPolicyKeyW, L"FallbackToLegacyGPO", REG_SZ, L"no", 6);
    EXPECT_TRUE(RegUtils::IsFallbackToLegacyGPO());
}

TEST_F(RegUtilsTest, NumbersMustHaveTypeAndSizeOfADword)
{
    const unsigned char bytes[8] = {0x78, 0x56, 0x34, 0x12};
    struct Case
    {
        DWORD type;
        size_t size;
        bool expected;
    };
    const Case cases[] = {{REG_DWORD, 4, true},
                          {REG_DWORD, 3, false},
                          {REG_DWORD, 0, false},
                          {REG_DWORD, 8, false},
                          {REG_QWORD, 8, false},
                          {REG_SZ, 4, false},
                          {REG_BINARY, 4, false},
                          {REG_DWORD_BIG_ENDIAN, 4, false}};
    for (const Case& c : cases)
    {
        m_registry.Set(HKEY_LOCAL_MACHINE, kPolicyKeyW, L"Value", c.type, bytes, c.size);
        m_registry.Set(HKEY_CURRENT_USER, kPolicyKeyW, L"Value", c.type, bytes, c.size);
        for (HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER})
        {
            DWORD value = 99;
            EXPECT_EQ(RegUtils::ReadDwordValue(root, kDriverPolicyKey, "Value", 7, &value), c.expected);
            EXPECT_EQ(value, c.expected ? 0x12345678U : 7U) << c.type << ' ' << c.size;
        }
        DWORD policy = 99;
        EXPECT_EQ(RegUtils::ReadGPODwordValue("Value", 7, &policy), c.expected);
        EXPECT_EQ(policy, c.expected ? 0x12345678U : 7U) << c.type << ' ' << c.size;
    }
    // A policy of the wrong type does not hide the next one.
    m_registry.SetDword(HKEY_LOCAL_MACHINE, kPolicyKeyW, L"Value", 5);
    DWORD value = 99;
    EXPECT_TRUE(RegUtils::ReadGPODwordValue("Value", 7, &value));
    EXPECT_EQ(value, 5U);
}

TEST_F(RegUtilsTest, ReadersRefuseMissingArguments)
{
    m_registry.SetText(kDriverKeyW, L"", L"text"); // what an empty value name would find
    m_registry.SetText(kDriverKeyW, L"Text", L"text");
    const HKEY root = HKEY_LOCAL_MACHINE;
    DWORD value = 99;
    char* narrow = nullptr;
    wchar_t* wide = nullptr;
    struct Case
    {
        HKEY root;
        const char* key;
        const wchar_t* wideKey;
        const char* name;
        const wchar_t* wideName;
    };
    const Case cases[] = {{nullptr, kDriverKey, kDriverKeyW, "Text", L"Text"},
                          {root, nullptr, nullptr, "Text", L"Text"},
                          {root, "", L"", "Text", L"Text"},
                          {root, kDriverKey, kDriverKeyW, nullptr, nullptr},
                          {root, kDriverKey, kDriverKeyW, "", L""}};
    for (const Case& c : cases)
    {
        EXPECT_FALSE(RegUtils::ReadDwordValue(c.root, c.key, c.name, 1, &value));
        EXPECT_FALSE(RegUtils::ReadStringValueA(c.root, c.key, c.name, &narrow));
        EXPECT_FALSE(RegUtils::ReadStringValueW(c.root, c.wideKey, c.wideName, &wide, nullptr));
    }
    EXPECT_FALSE(RegUtils::ReadDwordValue(root, kDriverKey, "Text", 1, nullptr));
    EXPECT_FALSE(RegUtils::ReadGPODwordValue("Text", 1, nullptr));
    EXPECT_FALSE(RegUtils::ReadStringValueA(root, kDriverKey, "Text", nullptr));
    EXPECT_FALSE(RegUtils::ReadStringValueW(root, kDriverKeyW, L"Text", nullptr, nullptr));
    EXPECT_FALSE(RegUtils::ReadStringValueW(root, L"Software\\None", L"Text", &wide, nullptr));
    EXPECT_EQ(narrow, nullptr);
    EXPECT_EQ(wide, nullptr);
    EXPECT_EQ(ReadNarrow("Text"), "text"); // nothing but the arguments was wrong
    EXPECT_EQ(ReadNarrow("None"), std::nullopt);
    EXPECT_EQ(ReadWide(L"None"), std::nullopt);
}

TEST_F(RegUtilsTest, TextsOfAnyLengthArrive)
{
    // Around the first buffer of 260 bytes, counted in wide and in narrow characters, and far beyond it.
    for (const size_t length : {0U, 1U, 127U, 128U, 129U, 130U, 131U, 257U, 258U, 259U, 260U, 261U, 519U, 40'000U})
    {
        std::wstring text(length, L'x');
        for (size_t i = 0; i < length; i += 7)
        {
            text[i] = static_cast<wchar_t>(L'a' + i % 23);
        }
        const std::string narrow(text.begin(), text.end());
        for (const size_t terminators : {0U, 1U})
        {
            const size_t bytes = (length + terminators) * sizeof(wchar_t);
            m_registry.Set(HKEY_LOCAL_MACHINE, kDriverKeyW, L"Text", REG_SZ, text.c_str(), bytes);
            DWORD stored = 0;
            EXPECT_EQ(ReadWide(L"Text", &stored), text) << length;
            EXPECT_GE(stored, bytes) << length; // Wine counts a terminator of its own where there is room
            EXPECT_LE(stored, bytes + (1 - terminators) * sizeof(wchar_t)) << length;
            EXPECT_EQ(ReadNarrow("Text"), narrow) << length;
        }
    }
}

TEST_F(RegUtilsTest, OddTextsAreTerminated)
{
    // Sizes that are no whole number of characters, at the end of the first buffer too.
    for (const size_t bytes : {1U, 3U, 257U, 259U, 261U, 263U, 1001U})
    {
        const std::wstring text(bytes / 2 + 1, L'y');
        m_registry.Set(HKEY_LOCAL_MACHINE, kDriverKeyW, L"Text", REG_SZ, text.data(), bytes);
        const std::optional<std::wstring> read = ReadWide(L"Text");
        ASSERT_TRUE(read.has_value()) << bytes;
        EXPECT_EQ(read->substr(0, bytes / 2), text.substr(0, bytes / 2)) << bytes;
        EXPECT_LE(read->size(), bytes / 2 + 1) << bytes; // at most the half character more
    }
    m_registry.SetText(kDriverKeyW, L"Text", std::wstring_view(L"one\0two\0", 8), REG_MULTI_SZ);
    EXPECT_EQ(ReadWide(L"Text"), L"one");
    EXPECT_EQ(ReadNarrow("Text"), std::nullopt);
    for (const DWORD type : std::initializer_list<DWORD>{REG_EXPAND_SZ, REG_BINARY, REG_DWORD, REG_NONE})
    {
        m_registry.Set(HKEY_LOCAL_MACHINE, kDriverKeyW, L"Text", type, L"a", 4);
        EXPECT_EQ(ReadWide(L"Text"), std::nullopt) << type;
        EXPECT_EQ(ReadNarrow("Text"), std::nullopt) << type;
    }
}

TEST_F(RegUtilsTest, ValuesAreWritten)
{
    const DWORD number = 0x12345678;
    const wchar_t* key = L"Software\\Zelmora\\Tessary\\new\\deep";
    EXPECT_TRUE(SetRegistryValue(HKEY_LOCAL_MACHINE, key, L"Value", REG_SZ, L"abc", 8));
    EXPECT_TRUE(SetRegistryValue(HKEY_LOCAL_MACHINE, key, L"Value", REG_DWORD, &number, sizeof(number)));
    DWORD value = 0;
    EXPECT_TRUE(
        RegUtils::ReadDwordValue(HKEY_LOCAL_MACHINE, "Software\\Zelmora\\Tessary\\new\\deep", "Value", 1, &value));
    EXPECT_EQ(value, number);
    EXPECT_FALSE(SetRegistryValue(nullptr, key, L"Value", REG_DWORD, &number, sizeof(number)));
    EXPECT_FALSE(SetRegistryValue(HKEY_LOCAL_MACHINE, nullptr, L"Value", REG_DWORD, &number, sizeof(number)));
    EXPECT_FALSE(SetRegistryValue(HKEY_LOCAL_MACHINE, key, nullptr, REG_DWORD, &number, sizeof(number)));
    const std::wstring tooLong(300, L'k');
    EXPECT_FALSE(SetRegistryValue(HKEY_LOCAL_MACHINE, tooLong.c_str(), L"Value", REG_DWORD, &number, sizeof(number)));
}

} // namespace
} // namespace tsypr::test

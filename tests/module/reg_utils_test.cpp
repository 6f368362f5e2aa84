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
    RegUtilsTest()
    {
        Dictionary settings;
        settings.Set(kLogFileNameKey, Utf8(m_folder / "log"));
        LogStart("test", settings);
    }
    ~RegUtilsTest() override
    {
        LogStop();
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

    ScratchFolder m_folder{"registry"};
    TestRegistry m_registry;
};

TEST_F(RegUtilsTest, PoliciesAreLookedUpInOrder)
{
    const std::pair<HKEY, const wchar_t*> places[] = {{HKEY_CURRENT_USER, kPolicyKeyW},
                                                      {HKEY_CURRENT_USER, kLegacyPolicyKeyW},
                                                      {HKEY_LOCAL_MACHINE, kPolicyKeyW},
                                                      {HKEY_LOCAL_MACHINE, kLegacyPolicyKeyW}};
    // For every set of places that hold the policy (bit i: places[i]) the place that wins, 4 for none; without the
    // legacy places and with them.
    constexpr size_t kWinners[2][16] = {{4, 0, 4, 0, 2, 0, 2, 0, 4, 0, 4, 0, 2, 0, 2, 0},
                                        {4, 0, 1, 0, 2, 0, 1, 0, 3, 0, 1, 0, 2, 0, 1, 0}};
    for (unsigned test = 0; test < 32; ++test)
    {
        const TestRegistry registry;
        const bool fallback = test >= 16;
        SetText(kProductKey, L"FallbackToLegacyGPO", fallback ? L"true" : L"false");
        for (unsigned i = 0; i < 4; ++i)
        {
            if ((test >> i & 1) != 0)
            {
                SetBytes(places[i].first, places[i].second, L"MaxDPILevel", REG_DWORD, &i, sizeof(i));
            }
        }
        const size_t winner = kWinners[fallback][test % 16];
        DWORD value = 99;
        EXPECT_EQ(RegUtils::ReadGPODwordValue("MaxDPILevel", 4, &value), winner < 4) << test;
        EXPECT_EQ(value, winner) << test;
        const std::string line = ReadLines(m_folder / "log").back();
        EXPECT_EQ(line.substr(25, 5), winner < 4 ? "info " : "error");
        const size_t told = winner < 4 ? winner : 2U + fallback;
        const std::string result = winner < 4 ? "succeeded" : "failed";
        EXPECT_TRUE(line.ends_with(" RegUtils::ReadGPODwordValue, " + result + " to read GPO [MaxDPILevel] from [" +
                                   Utf8(places[told].second) + "]."))
            << line;
    }
}

TEST_F(RegUtilsTest, FallbackIsOnUnlessSomeoneSaysOtherwise)
{
    // The texts of the policy and of the product (null: none), and what they mean.
    const std::tuple<const wchar_t*, const wchar_t*, bool> cases[] = {
        {nullptr, nullptr, true},   {nullptr, L"true", true},   {nullptr, L"TRUE", true},   {nullptr, L"tRuE", true},
        {nullptr, L"1", false},     {nullptr, L"yes", false},   {nullptr, L"false", false}, {nullptr, L"", false},
        {nullptr, L"true ", false}, {nullptr, L" true", false}, {nullptr, L"trues", false}, {nullptr, L"tru", false},
        {L"true", L"false", true},  {L"false", L"true", false}, {L"", L"true", false},      {L"TRUE", nullptr, true},
        {L"no", nullptr, false},    {L"no", L"no", false},      {L"1", L"true", false},     {L"True", L"", true}};
    for (const auto& [policy, product, expected] : cases)
    {
        SetText(kProductPolicyKey, L"FallbackToLegacyGPO", policy);
        SetText(kProductKey, L"FallbackToLegacyGPO", product);
        EXPECT_EQ(RegUtils::IsFallbackToLegacyGPO(), expected)
            << testing::PrintToString(policy) << ' ' << testing::PrintToString(product);
    }
    // Of several strings the first counts; a value of another type is none.
    SetBytes(HKEY_LOCAL_MACHINE, kProductPolicyKey, L"FallbackToLegacyGPO", REG_MULTI_SZ, L"0\0true\0", 16);
    EXPECT_FALSE(RegUtils::IsFallbackToLegacyGPO());
    SetText(kProductPolicyKey, L"FallbackToLegacyGPO", L"no", REG_EXPAND_SZ);
    SetText(kProductKey, L"FallbackToLegacyGPO", nullptr);
    EXPECT_TRUE(RegUtils::IsFallbackToLegacyGPO());
    // The user's hive has no say in it.
    SetBytes(HKEY_CURRENT_USER, kPolicyKeyW, L"FallbackToLegacyGPO", REG_SZ, L"no", 6);
    EXPECT_TRUE(RegUtils::IsFallbackToLegacyGPO());
}

TEST_F(RegUtilsTest, NumbersMustHaveTypeAndSizeOfADword)
{
    const unsigned char bytes[8] = {0x78, 0x56, 0x34, 0x12};
    SetBytes(HKEY_LOCAL_MACHINE, kPolicyKeyW, L"Value", REG_DWORD, bytes, 4);
    constexpr DWORD kTypes[] = {REG_DWORD, REG_DWORD, REG_DWORD, REG_QWORD, REG_SZ, REG_BINARY, REG_DWORD_BIG_ENDIAN};
    constexpr size_t kSizes[] = {0, 3, 8, 8, 4, 4, 4};
    for (size_t i = 0; i < std::size(kTypes); ++i)
    {
        SetBytes(HKEY_CURRENT_USER, kPolicyKeyW, L"Value", kTypes[i], bytes, kSizes[i]);
        DWORD value = 99;
        EXPECT_FALSE(RegUtils::ReadDwordValue(HKEY_CURRENT_USER, kDriverPolicyKey, "Value", 7, &value));
        EXPECT_EQ(value, 7U) << i;
        EXPECT_TRUE(RegUtils::ReadGPODwordValue("Value", 7, &value)); // it does not hide the next place's
        EXPECT_EQ(value, 0x12345678U) << i;
    }
}

TEST_F(RegUtilsTest, ReadersRefuseMissingArguments)
{
    SetText(kDriverKeyW, L"", L"text"); // what an empty value name would find
    SetText(kDriverKeyW, L"Text", L"text");
    const HKEY root = HKEY_LOCAL_MACHINE;
    DWORD value = 99;
    char* text = nullptr;
    const std::tuple<HKEY, const char*, const char*> cases[] = {{nullptr, kDriverKey, "Text"},
                                                                {root, nullptr, "Text"},
                                                                {root, "", "Text"},
                                                                {root, "Software\\None", "Text"},
                                                                {root, kDriverKey, nullptr},
                                                                {root, kDriverKey, ""},
                                                                {root, kDriverKey, "None"}};
    for (const auto& [key, subkey, name] : cases)
    {
        EXPECT_FALSE(RegUtils::ReadDwordValue(key, subkey, name, 1, &value));
        EXPECT_FALSE(RegUtils::ReadStringValueA(key, subkey, name, &text));
    }
    EXPECT_FALSE(RegUtils::ReadDwordValue(root, kDriverKey, "Text", 1, nullptr));
    EXPECT_FALSE(RegUtils::ReadGPODwordValue("Text", 1, nullptr));
    EXPECT_FALSE(RegUtils::ReadStringValueA(root, kDriverKey, "Text", nullptr));
    EXPECT_FALSE(RegUtils::ReadStringValueW(root, kDriverKeyW, L"Text", nullptr, nullptr));
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(ReadNarrow("Text"), "text"); // nothing but the arguments was wrong
}

TEST_F(RegUtilsTest, TextsOfAnySizeArriveTerminated)
{
    // Around the first buffer of 260 bytes, counted in wide and in narrow characters, and far beyond it; sizes that are
    // no whole number of characters too.
    for (const size_t bytes : {0U,   1U,   2U,   3U,   254U, 256U, 257U, 258U, 259U, 260U,  261U,
                               262U, 263U, 264U, 514U, 516U, 518U, 520U, 522U, 524U, 1001U, 80'000U})
    {
        const std::wstring stored = std::wstring(bytes / 4, L'a') + std::wstring(bytes, L'b');
        const std::wstring text = stored.substr(0, bytes / 2);
        SetBytes(HKEY_LOCAL_MACHINE, kDriverKeyW, L"Text", REG_SZ, stored.c_str(), bytes);
        DWORD size = 0;
        const std::wstring read = ReadWide(L"Text", &size).value_or(L"none");
        EXPECT_TRUE(read.starts_with(text) && read.size() <= text.size() + bytes % 2) << bytes;
        // Wine counts a terminator of its own where there is room.
        EXPECT_TRUE(size >= bytes && size <= bytes + 2) << bytes;
        EXPECT_TRUE(bytes % 2 != 0 || ReadNarrow("Text") == Utf8(text)) << bytes;
        SetText(kDriverKeyW, L"Text", text.c_str());
        EXPECT_EQ(ReadWide(L"Text", &size), text) << bytes;
        EXPECT_EQ(size, (text.size() + 1) * sizeof(wchar_t)) << bytes;
        EXPECT_EQ(ReadNarrow("Text"), Utf8(text)) << bytes;
    }
    SetBytes(HKEY_LOCAL_MACHINE, kDriverKeyW, L"Text", REG_MULTI_SZ, L"one\0two\0", 18);
    EXPECT_EQ(ReadWide(L"Text"), L"one");
    EXPECT_EQ(ReadNarrow("Text"), std::nullopt);
    for (const DWORD type : {DWORD{REG_EXPAND_SZ}, DWORD{REG_BINARY}, DWORD{REG_DWORD}, DWORD{REG_NONE}})
    {
        SetBytes(HKEY_LOCAL_MACHINE, kDriverKeyW, L"Text", type, L"a", 4);
        EXPECT_EQ(ReadWide(L"Text"), std::nullopt) << type;
        EXPECT_EQ(ReadNarrow("Text"), std::nullopt) << type;
    }
}

TEST_F(RegUtilsTest, ValuesAreWritten)
{
    const DWORD number = 0x12345678;
    const wchar_t* key = L"Software\\Zelmora\\new\\deep";
    EXPECT_TRUE(SetRegistryValue(HKEY_LOCAL_MACHINE, key, L"Value", REG_DWORD, &number, sizeof(number)));
    DWORD value = 0;
    EXPECT_TRUE(RegUtils::ReadDwordValue(HKEY_LOCAL_MACHINE, "Software\\Zelmora\\new\\deep", "Value", 1, &value));
    EXPECT_EQ(value, number);
    EXPECT_FALSE(SetRegistryValue(nullptr, key, L"Value", REG_DWORD, &number, 4));
    EXPECT_FALSE(SetRegistryValue(HKEY_LOCAL_MACHINE, nullptr, L"Value", REG_DWORD, &number, 4));
    EXPECT_FALSE(SetRegistryValue(HKEY_LOCAL_MACHINE, key, nullptr, REG_DWORD, &number, 4));
    EXPECT_FALSE(
        SetRegistryValue(HKEY_LOCAL_MACHINE, std::wstring(300, L'k').c_str(), L"Value", REG_DWORD, &number, 4));
}

} // namespace
} // namespace tsypr::test

// The program's own main: with "--child" it is one of the processes that the tests start.
#include "tests/lib/log/log_files.h"

#include "lib/file/append_file.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace tsypr::test
{
namespace
{

// Writes N lines "<NAME 0>", "<NAME 1>", ... into FILE, which others write to as well and which is rotated at BYTES.
int WriteLines(const std::string& file, const std::string& name, int count, const std::string& bytes)
{
    if (!LogStart("test", Settings(file, {{kLogRotateBytesKey, bytes.c_str()}, {kLogKeepRotatedKey, "999"}})))
    {
        return 1;
    }
    for (int i = 0; i < count; ++i)
    {
        LogWrite(kLogInfo, "<%s %d>\n", name.c_str(), i);
    }
    LogStop();
    return 0;
}

// Writes lines "<0>", "<1>", ... into FILE for ever, and after each one more line into ACKNOWLEDGED.
int WriteForEver(const std::string& file, const std::string& acknowledged, const std::string& own)
{
    AppendFile acknowledgements;
    const Dictionary settings =
        Settings(file, {{kLogRotateBytesKey, "20000"}, {kLogKeepRotatedKey, "999"}, {kLogOwnFileKey, own.c_str()}});
    if (!LogStart("test", settings) || !acknowledgements.Open(acknowledged.c_str(), AppendMode::Own))
    {
        return 1;
    }
    for (int i = 0;; ++i)
    {
        LogWrite(kLogInfo, "<%d>\n", i);
        if (!acknowledgements.Append("\n", 1))
        {
            return 1;
        }
    }
}

// Keeps a log open in FILE until it is killed; makes READY once it is.
int HoldOpen(const std::string& file, const std::string& ready)
{
    AppendFile sign;
    if (!LogStart("test", Settings(file)) || !sign.Open(ready.c_str()))
    {
        return 1;
    }
    std::this_thread::sleep_for(std::chrono::minutes(1));
    return 0;
}

} // namespace

int RunChild(const std::vector<std::string>& arguments)
{
    const std::string& role = arguments[0];
    if (role == "write-lines")
    {
        return WriteLines(arguments[1], arguments[2], std::atoi(arguments[3].c_str()), arguments[4]);
    }
    if (role == "write-for-ever")
    {
        return WriteForEver(arguments[1], arguments[2], arguments[3]);
    }
    return role == "hold-open" ? HoldOpen(arguments[1], arguments[2]) : 2;
}

} // namespace tsypr::test

int main(int argc, char** argv)
{
    if (argc > 2 && std::string(argv[1]) == "--child")
    {
        return tsypr::test::RunChild({argv + 2, argv + argc});
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

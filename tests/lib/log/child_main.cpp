// What the processes do that the tests of this folder start.
#include "tests/lib/child_process.h"
#include "tests/lib/log/log_files.h"

#include "lib/file/append_file.h"

namespace tsypr::test
{
namespace
{

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
    if (!LogStart("test", Settings(file)) || !sign.Open(ready.c_str()) || !sign.Append("ready", 5))
    {
        return 1;
    }
    std::this_thread::sleep_for(std::chrono::minutes(1));
    return 0;
}

} // namespace

int RunChild(const std::vector<std::string>& arguments)
{
    return arguments[0] == "write-for-ever" ? WriteForEver(arguments[1], arguments[2], arguments[3])
                                            : HoldOpen(arguments[1], arguments[2]);
}

} // namespace tsypr::test

int main(int argc, char** argv)
{
    return tsypr::test::RunTestsOrChild(argc, argv);
}

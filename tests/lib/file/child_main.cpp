// What the processes do that the tests of this folder start.
#include "tests/lib/child_process.h"
#include "tests/lib/file/file_test.h"

#include "lib/file/append_file.h"

#include <cstdlib>
#include <tuple>

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace tsypr::test
{
namespace
{

constexpr int kCrashed = 77;

void EndAtOnce(void* /*context*/)
{
#ifdef _WIN32
    TerminateProcess(GetCurrentProcess(), kCrashed);
#else
    _exit(kCrashed);
#endif
}

// Replaces FILE by "new" and ends at the N-th operation.
int CrashAt(const std::string& file, unsigned operation)
{
    FileFaultPlan plan;
    plan.Call(FileOperation::Any, EndAtOnce, nullptr, operation);
    return ReplaceFileContents(file.c_str(), "new").Ok() ? 0 : 1;
}

// Replaces FILE for ever by the lines of a rising number, and acknowledges each in ACKNOWLEDGED.
int ReplaceForEver(const std::string& file, const std::string& acknowledged)
{
    AppendFile log;
    log.Open(acknowledged.c_str());
    for (unsigned number = 1;; ++number)
    {
        const std::string line = std::to_string(number) + '\n';
        std::string contents;
        while (contents.size() < 20'000)
        {
            contents += line;
        }
        if (!ReplaceFileContents(file.c_str(), contents).Ok() || !log.Append(line.data(), line.size()))
        {
            return 1;
        }
    }
}

// Holds the lock on FILE until it is killed; makes READY once it has it.
int HoldLock(const std::string& file, const std::string& ready)
{
    FileLock lock;
    if (!lock.Acquire(file.c_str(), LockMode::Exclusive, 5000).Ok() || Create(ready) != FileError::None)
    {
        return 1;
    }
    std::this_thread::sleep_for(std::chrono::minutes(1));
    return 0;
}

} // namespace

int RunChild(const std::vector<std::string>& arguments)
{
    const auto& [role, first, second] = std::tie(arguments[0], arguments[1], arguments[2]);
    return role == "crash-at"           ? CrashAt(first, static_cast<unsigned>(std::atoi(second.c_str())))
           : role == "replace-for-ever" ? ReplaceForEver(first, second)
                                        : HoldLock(first, second);
}

} // namespace tsypr::test

int main(int argc, char** argv)
{
    return tsypr::test::RunTestsOrChild(argc, argv);
}

// What the fuzz programs share.
#ifndef TESSARY_TESTS_FUZZ_FUZZ_CHECK_H
#define TESSARY_TESTS_FUZZ_FUZZ_CHECK_H

#include <cstdio>
#include <cstdlib>

namespace tsypr
{

inline void Check(bool holds, const char* what = "what always should")
{
    if (!holds)
    {
        std::fprintf(stderr, "%s does not hold\n", what);
        std::abort();
    }
}

} // namespace tsypr

#endif

// Memory that runs out at a chosen allocation. The program is linked so that malloc, calloc and free pass through here.
#ifndef TESSARY_TESTS_REMOTE_ALLOCATION_FAULTS_H
#define TESSARY_TESTS_REMOTE_ALLOCATION_FAULTS_H

namespace tsypr::test
{

// The n-th allocation (0 is the next one) fails once while this lives. For tests that run on one thread.
class AllocationFault
{
public:
    explicit AllocationFault(long n) noexcept;
    ~AllocationFault();
    AllocationFault(const AllocationFault&) = delete;
    AllocationFault& operator=(const AllocationFault&) = delete;

    // Whether there were that many allocations.
    bool Happened() const noexcept;
};

// What the fakes allocate for themselves does not count.
class AllocationFaultPause
{
public:
    AllocationFaultPause() noexcept;
    ~AllocationFaultPause();
    AllocationFaultPause(const AllocationFaultPause&) = delete;
    AllocationFaultPause& operator=(const AllocationFaultPause&) = delete;

private:
    long m_countdown;
};

// Allocations made so far that have not been freed.
long LiveAllocations() noexcept;

} // namespace tsypr::test

#endif

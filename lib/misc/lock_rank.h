// The order in which locks may be taken, watched in debug builds.
//
// A lock with a rank may be taken only while every lock that the thread holds has a lower one. Whoever keeps to that
// order cannot wait in a circle. Rank 0 stands for none: such a lock is not watched.
#ifndef TESSARY_LIB_MISC_LOCK_RANK_H
#define TESSARY_LIB_MISC_LOCK_RANK_H

namespace tsypr
{

#ifdef TESSARY_LOCK_RANKS
inline constexpr bool kLockRanksWatched = true;
#else
inline constexpr bool kLockRanksWatched = false;
#endif

struct LockRankViolation
{
    const char* heldName; // "" for a lock without a name
    int heldRank;
    const char* wantedName;
    int wantedRank;
};

// Called by the thread that is about to take the lock; the thread goes on when the handler returns.
using LockRankHandler = void (*)(const LockRankViolation& violation) noexcept;

// Sets who is told of a violation and returns who was before; null is the default: a line to the debugger and to the
// standard error output. Without effect where ranks are not watched.
LockRankHandler SetLockRankHandler(LockRankHandler handler) noexcept;

namespace detail
{
void CheckLockRank(const char* name, int rank) noexcept;
void NoteLockHeld(const void* lock, const char* name, int rank) noexcept;
void NoteLockReleased(const void* lock) noexcept;

// The platform's part of the default handler. `line` ends with a line break.
void ShowToDeveloper(const char* line) noexcept;
} // namespace detail

} // namespace tsypr

#endif

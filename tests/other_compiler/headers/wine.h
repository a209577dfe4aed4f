// Included first: what Wine's headers of the platform and of the C runtime lack, or define otherwise, for clang and its
// C++ library.
#pragma once

// Wine defines these as functions, clang has them built in.
#define _InterlockedAnd64 Wine_InterlockedAnd64
#define _InterlockedCompareExchange128 Wine_InterlockedCompareExchange128
#define _InterlockedCompareExchangePointer Wine_InterlockedCompareExchangePointer
#define _InterlockedDecrement64 Wine_InterlockedDecrement64
#define _InterlockedExchangeAdd64 Wine_InterlockedExchangeAdd64
#define _InterlockedExchangePointer Wine_InterlockedExchangePointer
#define _InterlockedIncrement64 Wine_InterlockedIncrement64
#define _InterlockedOr64 Wine_InterlockedOr64
#define _InterlockedXor64 Wine_InterlockedXor64

// 64 bits in the platform's own C runtime for 32 bits, too.
#define _TIME_T_DEFINED
typedef __int64 time_t;
#include <corecrt.h>
#undef _USE_32BIT_TIME_T
#include <time.h>
struct timespec {
    time_t tv_sec;
    long tv_nsec;
};
inline int localtime_s(struct tm* parts, const time_t* seconds) { return _localtime64_s(parts, seconds); }

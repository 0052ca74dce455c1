#pragma once
// Counts the allocations of the process, so a benchmark can show that an operation makes none.
// Linking AllocationCounter.cpp replaces the global operator new.
#include "platform/quor/Types.h"

U64 allocationsSoFar();

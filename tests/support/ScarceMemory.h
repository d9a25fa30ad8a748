#pragma once

namespace ScarceMemory {

/// Refuses what this thread takes with new: after some allocations a number of them, one after another.
void RefuseAfter(int some, int number);

}  // namespace ScarceMemory

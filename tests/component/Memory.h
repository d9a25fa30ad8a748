#pragma once

#include <cstddef>
#include <functional>
#include <optional>

/// Refuses what this thread takes with new, apart from what a Fakes::Aside spares.
namespace Memory {

/// On Windows a DLL, the standard library's too, does not see a program's own operator new.
#ifdef _WIN32
constexpr bool isAllInReach = false;
#else
constexpr bool isAllInReach = true;
#endif

/// From now on refuses the allocation of this number, counted from 0, and when `andLater` every one after it.
void RefuseFrom(int number, bool andLater);

/// Ends that. How long the journal was at the first refusal; nothing when there was none.
std::optional<std::size_t> RefuseNoMore();

/// Does something at the next allocation, before it is made.
void AtNext(std::function<void()> action);

}  // namespace Memory

#pragma once

#include <cstddef>

/// How often this thread asked for memory.
std::size_t Allocations();

#pragma once

#include <cstdint>

// Heap allocations made by this process so far (every operator new).
std::uint64_t allocation_count();

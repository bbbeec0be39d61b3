#pragma once

#include <cstdint>

/// How often this program has asked for memory by operator new.
std::uint64_t Allocations();

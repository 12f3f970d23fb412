#ifndef OVELIN_PROBE_HEAP_H
#define OVELIN_PROBE_HEAP_H

#include <cstddef>

// The bytes that the program holds on the heap, including the allocator's own bytes in front of each block.
std::size_t heapBytes();

// The bytes by which an action changes the heap; negative if the action frees more than it allocates.
template<typename Action>
std::ptrdiff_t heapGrowth(const Action &action)
{
    const std::size_t before = heapBytes();
    action();
    return static_cast<std::ptrdiff_t>(heapBytes() - before);
}

#endif

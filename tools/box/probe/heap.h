#ifndef OVELIN_PROBE_HEAP_H
#define OVELIN_PROBE_HEAP_H

#include <cstddef>

// The bytes that the program holds on the heap, with what the allocator adds to each block.
std::size_t heapBytes();

// What an action leaves on the heap; negative if it frees more than it takes.
template<typename Action>
std::ptrdiff_t heapGrowth(const Action &action)
{
    const std::size_t before = heapBytes();
    action();
    return static_cast<std::ptrdiff_t>(heapBytes() - before);
}

#endif

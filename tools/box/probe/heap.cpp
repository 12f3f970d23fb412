#include "heap.h"

#include <malloc.h>

#include <atomic>
#include <cerrno>

// The C library keeps these names of its own functions for programs that replace malloc().
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *block, std::size_t size);
void *__libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void *block);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

std::atomic<std::size_t> held = 0;

// The allocator stores the size of each block in front of the block.
std::size_t blockSize(void *block)
{
    return block ? malloc_usable_size(block) + sizeof(std::size_t) : 0;
}

void *counted(void *block)
{
    held += blockSize(block);
    return block;
}

} // namespace

std::size_t heapBytes()
{
    return held;
}

// The C library's headers give the parameters reserved names, which differ from these.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" {

void *malloc(std::size_t size)
{
    return counted(__libc_malloc(size));
}

void *calloc(std::size_t count, std::size_t size)
{
    return counted(__libc_calloc(count, size));
}

void *realloc(void *block, std::size_t size)
{
    const std::size_t before = blockSize(block);
    void *moved = __libc_realloc(block, size);
    if (moved || size == 0)
        held -= before;
    return counted(moved);
}

void *memalign(std::size_t alignment, std::size_t size)
{
    return counted(__libc_memalign(alignment, size));
}

void *aligned_alloc(std::size_t alignment, std::size_t size)
{
    return memalign(alignment, size);
}

int posix_memalign(void **block, std::size_t alignment, std::size_t size)
{
    *block = memalign(alignment, size);
    return *block ? 0 : ENOMEM;
}

void free(void *block)
{
    held -= blockSize(block);
    __libc_free(block);
}

} // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)

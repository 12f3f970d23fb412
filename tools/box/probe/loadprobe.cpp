// loadprobe LIBRARY
//
// Loads the library into a process that already has Qt Gui, and prints the memory that loading takes, in
// lines of "name value".

#include "heap.h"
#include "mark.h"

#include <dlfcn.h>
#include <link.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string>

namespace {

// The bytes of the library's pages that the process has written to: the kernel reports them as
// anonymous. QEMU replaces /proc/self/smaps by a file of zeros, but not /proc/thread-self/smaps.
std::size_t dirtyBytes(const std::string &library)
{
    constexpr std::size_t kibibyte = 1024;
    std::ifstream mappings("/proc/thread-self/smaps");
    std::string line;
    std::string libraryEnd;
    bool isLibrary = false;
    std::size_t dirty = 0;
    while (std::getline(mappings, line)) {
        std::size_t amount = 0;
        const std::size_t dash = line.find('-');
        const std::size_t space = line.find(' ');
        if (dash < space) {
            // A mapping starts with a line "begin-end rights ... file". The library's variables without
            // initial value are in a mapping without a file that begins where a mapping of the library ends.
            const bool hasFile = line.find('/') != std::string::npos;
            isLibrary = hasFile ? line.find(library) != std::string::npos
                                : line.substr(0, dash) == libraryEnd;
            if (isLibrary)
                libraryEnd = line.substr(dash + 1, space - dash - 1);
        } else if (isLibrary && std::sscanf(line.c_str(), "Anonymous: %zu", &amount) == 1) {
            dirty += amount * kibibyte;
        }
    }
    return dirty;
}

} // namespace

// cppcheck-suppress constParameter ; the language fixes the parameters of main()
int main(int argc, char *argv[])
{
    if (argc != 2) {
        std::cerr << "usage: loadprobe LIBRARY\n";
        return 1;
    }
    const std::string library = argv[1];

    markAction("empty", [] {});
    void *handle = nullptr;
    const std::size_t before = heapBytes();
    markAction("load", [&] { handle = dlopen(library.c_str(), RTLD_NOW); });
    if (!handle) {
        // NOLINTNEXTLINE(concurrency-mt-unsafe) there is one thread
        std::cerr << "loadprobe: " << dlerror() << '\n';
        return 1;
    }
    std::cout << "load-heap " << heapBytes() - before << '\n'
              << "load-dirty " << dirtyBytes(library) << '\n';
}

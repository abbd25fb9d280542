// What it costs to load a shared library: time and private memory, the median of
// fresh processes.
//
//     load_cost path/to/libkivxx.so [runs]
//
// The time is that of dlopen with all symbols bound, relocation and start-up
// included. The memory is what the process has of its own in the library's mappings
// and what the heap has grown by. The C++ runtime is loaded before.

#include <dlfcn.h>
#include <link.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

struct Cost {
    double microseconds;
    double mapped_bytes;
    double heap_bytes;
};

// The addresses that the library takes, from its first segment to the end of its
// last: parts of them are mapped without the name of the file.
struct Span {
    std::uintptr_t wanted;  // base of the library
    std::uintptr_t begin;
    std::uintptr_t end;
};

int find_segments(dl_phdr_info* info, std::size_t, void* data)
{
    Span& span = *static_cast<Span*>(data);
    if (info->dlpi_addr != span.wanted)
        return 0;
    for (unsigned i = 0; i < info->dlpi_phnum; ++i) {
        const auto& segment = info->dlpi_phdr[i];
        if (segment.p_type == PT_LOAD) {
            const std::uintptr_t begin = info->dlpi_addr + segment.p_vaddr;
            span.begin = std::min(span.begin, begin);
            span.end = std::max(span.end, begin + segment.p_memsz);
        }
    }
    return 1;
}

// Counts the pages that are no longer the file's. "Private_Dirty" has them too, but
// also pages of a file that was just built and is not yet written to the disk.
double private_bytes(const Span& span)
{
    std::FILE* file = std::fopen("/proc/self/smaps", "r");
    if (file == nullptr)
        return -1;
    double bytes = 0;
    bool inside = false;
    char line[4096];
    while (std::fgets(line, sizeof line, file) != nullptr) {
        unsigned long begin = 0;
        unsigned long end = 0;
        unsigned long kib = 0;
        if (std::sscanf(line, "%lx-%lx ", &begin, &end) == 2)
            inside = begin < span.end && end > span.begin;
        else if (inside && std::sscanf(line, "Anonymous: %lu kB", &kib) == 1)
            bytes += 1024.0 * static_cast<double>(kib);
    }
    std::fclose(file);
    return bytes;
}

double heap_in_use()
{
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd);
}

// In the fresh process: writes a Cost to standard output.
int load(const char* path)
{
    const double heap_before = heap_in_use();
    const auto start = std::chrono::steady_clock::now();
    void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    const auto stop = std::chrono::steady_clock::now();
    const double heap_after = heap_in_use();
    if (library == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    link_map* map = nullptr;
    dlinfo(library, RTLD_DI_LINKMAP, &map);
    Span span{map->l_addr, UINTPTR_MAX, 0};
    dl_iterate_phdr(find_segments, &span);
    const Cost cost{std::chrono::duration<double, std::micro>(stop - start).count(),
                    private_bytes(span), heap_after - heap_before};
    return std::fwrite(&cost, sizeof cost, 1, stdout) == 1 ? 0 : 1;
}

bool measure(const char* path, Cost& cost)
{
    int ends[2];
    if (pipe(ends) != 0)
        return false;
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        execl("/proc/self/exe", "load_cost", "--once", path, nullptr);
        _exit(127);
    }
    close(ends[1]);
    const bool complete = read(ends[0], &cost, sizeof cost) == ssize_t{sizeof cost};
    close(ends[0]);
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0 && complete;
}

double median(const std::vector<Cost>& costs, double Cost::*field)
{
    std::vector<double> values;
    for (const Cost& cost : costs)
        values.push_back(cost.*field);
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], "--once") == 0)
        return load(argv[2]);
    const int runs = argc == 3 ? std::atoi(argv[2]) : 50;
    if (argc < 2 || argc > 3 || runs < 1) {
        std::fprintf(stderr, "usage: load_cost path/to/libkivxx.so [runs]\n");
        return 2;
    }
    // A path without a slash would be looked for on the library path only.
    std::string path = argv[1];
    if (path.find('/') == std::string::npos)
        path = "./" + path;
    std::vector<Cost> costs(static_cast<std::size_t>(runs));
    for (Cost& cost : costs)
        if (!measure(path.c_str(), cost))
            return 1;
    const double mapped = median(costs, &Cost::mapped_bytes) / 1024;
    const double heap = median(costs, &Cost::heap_bytes) / 1024;
    std::printf("time to load     %8.1f us\n", median(costs, &Cost::microseconds));
    std::printf(
        "private memory   %8.1f KiB: %.1f of the library's mappings, "
        "%.1f of the heap\n",
        mapped + heap, mapped, heap);
    return 0;
}

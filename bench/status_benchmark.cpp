// The status walk over a large working copy, against Subversion's own status
// call with a callback that only copies each record (the floor for any
// wrapper), and the `tessera status` program against `svn status`.
//
//   scripts/make-large-working-copy.sh "$TMPDIR/tessera-large-wc"
//   TESSERA_BENCH_WC="$TMPDIR/tessera-large-wc/wc" build-bench/bin/status_benchmark --benchmark_repetitions=5
//
// or scripts/bench-status.sh, which does both and prints the ratios.
//
// TESSERA_BENCH_WC      the working copy (made by make-large-working-copy.sh;
//                       its configuration directory is ../config)
// TESSERA_BENCH_SVN     the svn program (default: svn on the PATH)
// TESSERA_BENCH_TESSERA the tessera program; its benchmarks are skipped
//                       without it
//
// One context serves every iteration, as in an application that keeps its
// context; each iteration makes its result and frees it again, so freeing
// is measured too. The tree is read once and walked by svn before anything
// is timed, so that no run pays for the disk.
#include <benchmark/benchmark.h>
#include <tessera/Tessera.h>

#include <fcntl.h>
#include <malloc.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "LuSVNBackendFrame.h"

extern char** environ;

namespace {

namespace fs = std::filesystem;

struct Fixture {
    std::string workingCopy;
    std::string configDirectory;
    std::string home;
    std::shared_ptr<LuSVNContext> context;
};

// Never destroyed: a context that exit-time destructors destroy after a walk
// aborts inside SQLite as its pool closes the working-copy database
// (Subversion 1.14), so the process ends with it alive.
const Fixture& fixture()
{
    static const Fixture& made = *[] {
        auto* made = new Fixture;
        Fixture& f = *made;
        const char* wc = std::getenv("TESSERA_BENCH_WC");
        if (wc == nullptr || !fs::is_directory(fs::path(wc) / ".svn")) {
            std::fprintf(stderr,
                         "TESSERA_BENCH_WC must name a working copy made by scripts/make-large-working-copy.sh\n");
            std::exit(2);
        }
        f.workingCopy = fs::canonical(wc).string();
        f.configDirectory = (fs::path(f.workingCopy).parent_path() / "config").string();
        // Child processes and the library get a home of their own whose
        // ~/.subversion is the tree's configuration, never the user's.
        f.home = (fs::path(f.workingCopy).parent_path() / "home").string();
        fs::create_directories(fs::path(f.home) / ".subversion");
        for (const char* name : {"config", "servers"})
            fs::copy_file(fs::path(f.configDirectory) / name, fs::path(f.home) / ".subversion" / name,
                          fs::copy_options::overwrite_existing);
        setenv("HOME", f.home.c_str(), 1);
        LuSVNInitialize();
        f.context = LuSVNContext::contextWithBundle(LuSVNBundleLoader::sharedInstance()->newestBundle(), {},
                                                    f.configDirectory);
        return made;
    }();
    return made;
}

// --- Raw: svn_client_status5 with a copying callback ------------------------
//
// svn_client_status_dup is not in the entry-point table, so the callback does
// what it does for the fields a wrapper reads: a struct copy into the result
// pool, each string duplicated (apr_pstrdup), both locks copied with their
// strings, and the copy kept in an array. Only the backwards-compatibility
// record (an svn_wc_status3_t) is not copied. Table slots are read once, so
// nothing of the library sits between Subversion and the callback.

using Allocate = tessera_private::LuSVNSlot<3>::Type;
using Duplicate = tessera_private::LuSVNSlot<4>::Type;
using ArrayMake = tessera_private::LuSVNSlot<11>::Type;
using ArrayPush = tessera_private::LuSVNSlot<12>::Type;
using PoolCreate = tessera_private::LuSVNSlot<19>::Type;
using PoolDestroy = tessera_private::LuSVNSlot<20>::Type;
using Status5 = tessera_private::LuSVNSlot<70>::Type;

struct RawTable {
    Allocate allocate;
    Duplicate duplicate;
    ArrayMake arrayMake;
    ArrayPush arrayPush;
    PoolCreate poolCreate;
    PoolDestroy poolDestroy;
    Status5 status5;
};

const RawTable& rawTable()
{
    static const RawTable table = [] {
        const LuSVNBundleEntryPoints* slots = fixture().context->bundle()->entryPoints();
        return RawTable{reinterpret_cast<Allocate>(slots->slots[3]),
                        reinterpret_cast<Duplicate>(slots->slots[4]),
                        reinterpret_cast<ArrayMake>(slots->slots[11]),
                        reinterpret_cast<ArrayPush>(slots->slots[12]),
                        reinterpret_cast<PoolCreate>(slots->slots[19]),
                        reinterpret_cast<PoolDestroy>(slots->slots[20]),
                        reinterpret_cast<Status5>(slots->slots[70])};
    }();
    return table;
}

struct RawBaton {
    const RawTable* table;
    apr_pool_t* pool;
    apr_array_header_t* records;
    std::size_t bytes = 0;  // copied, at APR's 8-byte alignment
};

std::size_t aligned(std::size_t size)
{
    return (size + 7) & ~std::size_t{7};
}

void* allocate(RawBaton& baton, std::size_t size)
{
    baton.bytes += aligned(size);
    return baton.table->allocate(baton.pool, size);
}

const char* copyString(RawBaton& baton, const char* text)
{
    if (text == nullptr)
        return nullptr;
    baton.bytes += aligned(std::strlen(text) + 1);
    return baton.table->duplicate(baton.pool, text);
}

const svn_lock_t* copyLock(RawBaton& baton, const svn_lock_t* lock)
{
    if (lock == nullptr)
        return nullptr;
    auto* copy = static_cast<svn_lock_t*>(allocate(baton, sizeof(svn_lock_t)));
    *copy = *lock;
    copy->path = copyString(baton, lock->path);
    copy->token = copyString(baton, lock->token);
    copy->owner = copyString(baton, lock->owner);
    copy->comment = copyString(baton, lock->comment);
    return copy;
}

svn_error_t* copyRecord(void* batonPointer, const char* path, const svn_client_status_t* status, apr_pool_t*)
{
    RawBaton& baton = *static_cast<RawBaton*>(batonPointer);
    auto* copy = static_cast<svn_client_status_t*>(allocate(baton, sizeof(svn_client_status_t)));
    *copy = *status;
    copy->local_abspath = copyString(baton, status->local_abspath);
    copy->repos_root_url = copyString(baton, status->repos_root_url);
    copy->repos_uuid = copyString(baton, status->repos_uuid);
    copy->repos_relpath = copyString(baton, status->repos_relpath);
    copy->changed_author = copyString(baton, status->changed_author);
    copy->changelist = copyString(baton, status->changelist);
    copy->ood_changed_author = copyString(baton, status->ood_changed_author);
    copy->moved_from_abspath = copyString(baton, status->moved_from_abspath);
    copy->moved_to_abspath = copyString(baton, status->moved_to_abspath);
    copy->lock = copyLock(baton, status->lock);
    copy->repos_lock = copyLock(baton, status->repos_lock);
    copy->backwards_compatibility_baton = nullptr;
    *static_cast<const char**>(baton.table->arrayPush(baton.records)) = copyString(baton, path);
    *static_cast<svn_client_status_t**>(baton.table->arrayPush(baton.records)) = copy;
    baton.bytes += 2 * sizeof(void*);
    return nullptr;
}

// Returns the number of records; the copies live in `pool`, and `bytes` gets
// their size.
int rawStatus(const RawTable& table, apr_pool_t* pool, apr_pool_t* scratch, bool all, std::size_t* bytes = nullptr)
{
    const Fixture& f = fixture();
    RawBaton baton{&table, pool, table.arrayMake(pool, 1024, sizeof(void*))};
    svn_opt_revision_t revision{};
    revision.kind = svn_opt_revision_unspecified;
    svn_revnum_t resultRevision = 0;
    // No repository, ignores respected, externals walked, depth as sticky:
    // what the walk and the svn client ask for.
    svn_error_t* error = table.status5(&resultRevision, f.context->ctx(), f.workingCopy.c_str(), &revision,
                                       svn_depth_infinity, all, false, false, false, true, nullptr, copyRecord,
                                       &baton, scratch);
    f.context->throwIfError(error);
    if (bytes != nullptr)
        *bytes = baton.bytes;
    return baton.records->nelts / 2;
}

void RawStatus(benchmark::State& state, bool all)
{
    const Fixture& f = fixture();
    const RawTable& table = rawTable();
    // The context's callbacks (cancellation) run inside the call and want the
    // backend on the thread's stack, as in any operation.
    LuSVNBackendFrame frame(f.context->bundle());
    int records = 0;
    for (auto _ : state) {
        apr_pool_t* pool = table.poolCreate(nullptr, nullptr);
        apr_pool_t* scratch = table.poolCreate(nullptr, nullptr);
        records = rawStatus(table, pool, scratch, all);
        table.poolDestroy(scratch);
        table.poolDestroy(pool);
    }
    state.counters["items"] = records;
}

// --- The library's walk ------------------------------------------------------

LuSVNStatusOptions walkOptions(bool all)
{
    LuSVNStatusOptions options;
    options.setIncludeNormalFiles(all);
    options.setPropagateStatusToAncestor(all);
    return options;
}

void WalkStatus(benchmark::State& state, bool all)
{
    const Fixture& f = fixture();
    const auto path = LuSVNLocalPath::pathWithString(f.workingCopy);
    const LuSVNStatusOptions options = walkOptions(all);
    std::size_t nodes = 0;
    for (auto _ : state) {
        std::shared_ptr<LuSVNDirectory> root;
        std::uint32_t local = 0, remote = 0;
        auto result = LuSVNDirectory::statusForNodesInDirectoryAtPath(path, options, &root, &local, &remote,
                                                                      f.context);
        nodes = result.size();
        benchmark::DoNotOptimize(root);
    }
    state.counters["items"] = static_cast<double>(nodes);
}

// Memory held by a result while it is alive, per node, measured once per
// repetition (the time of these runs is not a figure).
//
// The walk's nodes live on the C++ heap: heap_per_node is malloc's bytes in
// use after the walk less before it, rss_per_node the same for resident
// memory (both after malloc_trim, so freed memory does not count). The
// walk's own pool goes back to APR's global allocator, which keeps its
// blocks; an earlier walk has already grown it, so it adds nothing here.
//
// The raw copies live in a pool whose blocks come from that same retained
// free list, which neither measure sees; copied_per_node counts the bytes
// the callback allocates instead (record, strings, locks, array slots).
struct MemoryUse {
    double heap;
    double resident;
};

MemoryUse memoryInUse()
{
    malloc_trim(0);
    const struct mallinfo2 info = mallinfo2();
    long pages = 0, resident = 0;
    if (std::FILE* statm = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(statm, "%ld %ld", &pages, &resident) != 2)
            resident = 0;
        std::fclose(statm);
    }
    return {static_cast<double>(info.uordblks + info.hblkhd),
            static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE))};
}

void WalkMemory(benchmark::State& state, bool all)
{
    const Fixture& f = fixture();
    const auto path = LuSVNLocalPath::pathWithString(f.workingCopy);
    const LuSVNStatusOptions options = walkOptions(all);
    for (auto _ : state) {
        const MemoryUse before = memoryInUse();
        std::shared_ptr<LuSVNDirectory> root;
        auto result = LuSVNDirectory::statusForNodesInDirectoryAtPath(path, options, &root, nullptr, nullptr,
                                                                      f.context);
        const MemoryUse after = memoryInUse();
        const auto nodes = static_cast<double>(result.size());
        state.counters["heap_per_node"] = (after.heap - before.heap) / nodes;
        state.counters["rss_per_node"] = (after.resident - before.resident) / nodes;
        state.counters["items"] = nodes;
    }
}

void RawMemory(benchmark::State& state)
{
    const RawTable& table = rawTable();
    LuSVNBackendFrame frame(fixture().context->bundle());
    for (auto _ : state) {
        apr_pool_t* pool = table.poolCreate(nullptr, nullptr);
        apr_pool_t* scratch = table.poolCreate(nullptr, nullptr);
        std::size_t bytes = 0;
        const int records = rawStatus(table, pool, scratch, true, &bytes);
        table.poolDestroy(scratch);
        table.poolDestroy(pool);
        state.counters["copied_per_node"] = static_cast<double>(bytes) / records;
        state.counters["items"] = records;
    }
}

// --- Whole programs ------------------------------------------------------------

// Runs the program with its output on /dev/null and returns its exit status;
// adds its processor time (user and system, seconds) to `cpu`.
int run(const std::vector<std::string>& arguments, double* cpu = nullptr)
{
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int failed = posix_spawnp(&child, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0)
        return -1;
    int status = 0;
    struct rusage usage {};
    wait4(child, &status, 0, &usage);
    if (cpu != nullptr)
        *cpu += static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Wall time is the figure; the child's processor time (child_cpu_ms, per
// run) is steadier on a busy machine.
// Linux keeps a process's peak resident memory across exec, so a child
// started from this (large) process would report this one's. The peak is
// taken by a fresh copy of this program ("--peak-of PROGRAM ARGS..."), whose
// own child starts small; it prints the child's peak (KiB).
int peakOf(char** argv)
{
    const pid_t child = fork();
    if (child == 0) {
        const int null = open("/dev/null", O_WRONLY);
        dup2(null, STDOUT_FILENO);
        execvp(argv[0], argv);
        _exit(127);
    }
    int status = 0;
    struct rusage usage {};
    wait4(child, &status, 0, &usage);
    std::printf("%ld\n", usage.ru_maxrss);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

long peakMemory(const std::vector<std::string>& arguments)
{
    std::vector<std::string> measured{fs::read_symlink("/proc/self/exe").string(), "--peak-of"};
    measured.insert(measured.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (const std::string& argument : measured)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    int pipe[2];
    if (::pipe(pipe) != 0)
        return -1;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, pipe[0]);
    pid_t child = 0;
    const int failed = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(pipe[1]);
    char text[32] = "";
    const ssize_t length = failed == 0 ? read(pipe[0], text, sizeof text - 1) : -1;
    close(pipe[0]);
    if (failed == 0)
        waitpid(child, nullptr, 0);
    return length > 0 ? std::strtol(text, nullptr, 10) : -1;
}

void Program(benchmark::State& state, const std::vector<std::string>& arguments)
{
    double cpu = 0;
    for (auto _ : state) {
        if (run(arguments, &cpu) != 0) {
            state.SkipWithError((arguments[0] + " failed").c_str());
            break;
        }
    }
    state.counters["child_cpu_ms"] =
        benchmark::Counter(cpu * 1000, benchmark::Counter::kAvgIterations);
    state.counters["child_peak_kib"] = static_cast<double>(peakMemory(arguments));
}

std::string svnProgram()
{
    const char* svn = std::getenv("TESSERA_BENCH_SVN");
    return svn != nullptr ? svn : "svn";
}

// The targets of a status run: the working copy, or (`files`) that many of
// its files, the first in path order, one argument each.
std::vector<std::string> targets(std::size_t files)
{
    const Fixture& f = fixture();
    if (files == 0)
        return {f.workingCopy};
    std::vector<std::string> found;
    for (auto entry = fs::recursive_directory_iterator(f.workingCopy); entry != fs::recursive_directory_iterator();
         ++entry) {
        if (entry->path().filename() == ".svn")
            entry.disable_recursion_pending();
        else if (entry->is_regular_file())
            found.push_back(entry->path().string());
    }
    std::sort(found.begin(), found.end());
    found.resize(std::min(files, found.size()));
    return found;
}

void SvnStatus(benchmark::State& state, bool verbose, std::size_t files)
{
    const Fixture& f = fixture();
    std::vector<std::string> arguments{svnProgram(), "status", "--config-dir", f.configDirectory,
                                       "--non-interactive"};
    if (verbose)
        arguments.push_back("-v");
    for (std::string& target : targets(files))
        arguments.push_back(std::move(target));
    Program(state, arguments);
}

void TesseraStatus(benchmark::State& state, bool verbose, std::size_t files)
{
    const Fixture& f = fixture();
    const char* tessera = std::getenv("TESSERA_BENCH_TESSERA");
    if (tessera == nullptr || access(tessera, X_OK) != 0) {
        state.SkipWithError("TESSERA_BENCH_TESSERA names no program");
        for (auto _ : state) {
        }
        return;
    }
    std::vector<std::string> arguments{tessera, "status", "--config-dir", f.configDirectory};
    if (verbose)
        arguments.push_back("-v");
    for (std::string& target : targets(files))
        arguments.push_back(std::move(target));
    Program(state, arguments);
}

// Reads every file of the working copy and its administrative area once, and
// runs one status, so that no measurement pays for the disk.
void warmCache()
{
    const Fixture& f = fixture();
    std::vector<char> buffer(1 << 16);
    for (const auto& entry : fs::recursive_directory_iterator(f.workingCopy)) {
        if (!entry.is_regular_file())
            continue;
        std::ifstream file(entry.path(), std::ios::binary);
        while (file.read(buffer.data(), static_cast<std::streamsize>(buffer.size())))
            ;
    }
    run({svnProgram(), "status", "--config-dir", f.configDirectory, "-q", f.workingCopy});
}

void registerAll()
{
    const auto walk = [](const char* name, auto function, auto... arguments) {
        return benchmark::RegisterBenchmark(name, [=](benchmark::State& state) { function(state, arguments...); })
            ->Unit(benchmark::kMillisecond);
    };
    walk("Raw/all", RawStatus, true)->UseRealTime();
    walk("Walk/all", WalkStatus, true)->UseRealTime();
    walk("Raw/changed", RawStatus, false)->UseRealTime();
    walk("Walk/changed", WalkStatus, false)->UseRealTime();
    walk("Memory/raw", [](benchmark::State& state) { RawMemory(state); })->Iterations(1);
    walk("Memory/walk", WalkMemory, true)->Iterations(1);
    walk("Process/svn-status", SvnStatus, false, 0)->UseRealTime();
    walk("Process/tessera-status", TesseraStatus, false, 0)->UseRealTime();
    walk("Process/svn-status-v", SvnStatus, true, 0)->UseRealTime();
    walk("Process/tessera-status-v", TesseraStatus, true, 0)->UseRealTime();
    walk("Process/svn-status-5000-files", SvnStatus, false, 5000)->UseRealTime();
    walk("Process/tessera-status-5000-files", TesseraStatus, false, 5000)->UseRealTime();
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc > 2 && std::strcmp(argv[1], "--peak-of") == 0)
        return peakOf(argv + 2);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    warmCache();
    registerAll();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

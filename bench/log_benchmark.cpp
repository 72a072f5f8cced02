// The library's log walk with changed paths against Subversion's own log call
// with a receiver that only copies each record (the floor for any wrapper).
//
//   scripts/bench-history.sh
//
// makes the history (scripts/make-history-fixture.sh) and runs this with
// TESSERA_BENCH_REPOSITORY naming its repository, beside the command-line
// comparisons.
//
// One context serves every iteration; each iteration makes its result and
// frees it again, so freeing is measured too.
#include <benchmark/benchmark.h>
#include <tessera/Tessera.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "LuSVNBackendFrame.h"

namespace {

struct Fixture {
    std::string url;
    std::shared_ptr<LuSVNContext> context;
};

const Fixture& fixture()
{
    static const Fixture made = [] {
        const char* repository = std::getenv("TESSERA_BENCH_REPOSITORY");
        if (repository == nullptr || !std::filesystem::is_directory(std::filesystem::path(repository) / "db")) {
            std::fprintf(stderr, "TESSERA_BENCH_REPOSITORY must name a repository made by "
                                 "scripts/make-history-fixture.sh\n");
            std::exit(2);
        }
        LuSVNInitialize();
        Fixture f;
        f.url = "file://" + std::filesystem::canonical(repository).string();
        f.context = LuSVNContext::contextWithBundle(LuSVNBundleLoader::sharedInstance()->newestBundle());
        return f;
    }();
    return made;
}

// --- Raw: svn_client_log3 with a copying receiver ---------------------------
//
// The least a C++ wrapper does with a record: author, date and message, and
// each changed path with its action and copy source, copied into values of
// its own. Table slots are read once, so nothing of the library sits between
// Subversion and the receiver.

struct RawChange {
    std::string path;
    char action;
    std::optional<std::string> copyPath;
    long copyRevision;
};

struct RawRecord {
    long revision;
    std::optional<std::string> author, date, message;
    std::vector<RawChange> changes;
};

struct RawTable {
    tessera_private::LuSVNSlot<11>::Type arrayMake;
    tessera_private::LuSVNSlot<12>::Type arrayPush;
    tessera_private::LuSVNSlot<14>::Type hashFirst;
    tessera_private::LuSVNSlot<15>::Type hashNext;
    tessera_private::LuSVNSlot<16>::Type hashThis;
    tessera_private::LuSVNSlot<19>::Type poolCreate;
    tessera_private::LuSVNSlot<20>::Type poolDestroy;
    tessera_private::LuSVNSlot<58>::Type log3;
};

template <int N>
typename tessera_private::LuSVNSlot<N>::Type slot(const LuSVNBundleEntryPoints* slots)
{
    return reinterpret_cast<typename tessera_private::LuSVNSlot<N>::Type>(slots->slots[N]);
}

const RawTable& rawTable()
{
    static const RawTable table = [] {
        const LuSVNBundleEntryPoints* slots = fixture().context->bundle()->entryPoints();
        return RawTable{slot<11>(slots), slot<12>(slots), slot<14>(slots), slot<15>(slots),
                        slot<16>(slots), slot<19>(slots), slot<20>(slots), slot<58>(slots)};
    }();
    return table;
}

struct RawBaton {
    const RawTable* table;
    std::vector<RawRecord> records;
};

std::optional<std::string> copied(const char* text)
{
    return text ? std::optional<std::string>(text) : std::nullopt;
}

svn_error_t* copyRecord(void* batonPointer, apr_hash_t* changedPaths, svn_revnum_t revision, const char* author,
                        const char* date, const char* message, apr_pool_t* pool)
{
    RawBaton& baton = *static_cast<RawBaton*>(batonPointer);
    RawRecord record{revision, copied(author), copied(date), copied(message), {}};
    if (changedPaths != nullptr) {
        for (apr_hash_index_t* entry = baton.table->hashFirst(pool, changedPaths); entry != nullptr;
             entry = baton.table->hashNext(entry)) {
            const void* key = nullptr;
            void* value = nullptr;
            baton.table->hashThis(entry, &key, nullptr, &value);
            const auto* change = static_cast<const svn_log_changed_path_t*>(value);
            record.changes.push_back({static_cast<const char*>(key), change->action, copied(change->copyfrom_path),
                                      change->copyfrom_rev});
        }
    }
    baton.records.push_back(std::move(record));
    return nullptr;
}

void RawLog(benchmark::State& state)
{
    const Fixture& f = fixture();
    const RawTable& table = rawTable();
    // The context's callbacks run inside the call and want the backend on
    // the thread's stack, as in any operation.
    LuSVNBackendFrame frame(f.context->bundle());
    std::size_t records = 0;
    for (auto _ : state) {
        apr_pool_t* pool = table.poolCreate(nullptr, nullptr);
        apr_array_header_t* targets = table.arrayMake(pool, 1, sizeof(const char*));
        *static_cast<const char**>(table.arrayPush(targets)) = f.url.c_str();
        svn_opt_revision_t peg{}, start{}, end{};
        peg.kind = svn_opt_revision_unspecified;
        start.kind = svn_opt_revision_head;
        end.kind = svn_opt_revision_number;
        end.value.number = 0;
        RawBaton baton{&table, {}};
        f.context->throwIfError(
            table.log3(targets, &peg, &start, &end, 0, true, false, copyRecord, &baton, f.context->ctx(), pool));
        records = baton.records.size();
        table.poolDestroy(pool);
    }
    state.counters["revisions"] = static_cast<double>(records);
}

// --- The library's walk ------------------------------------------------------

void LibraryLog(benchmark::State& state)
{
    const Fixture& f = fixture();
    const auto url = LuSVNURL::URLWithString(f.url);
    LuSVNLogOptions options;
    options.setFromRevision(LuSVNRevision::HEAD());
    options.setDiscoverChangedPaths(true);
    std::size_t records = 0;
    for (auto _ : state) {
        const auto items = LuSVNNode::readLogForNodeAtPath(url, nullptr, options, f.context);
        records = items.size();
    }
    state.counters["revisions"] = static_cast<double>(records);
}

BENCHMARK(RawLog)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(LibraryLog)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();

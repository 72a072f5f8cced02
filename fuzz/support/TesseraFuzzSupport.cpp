#include "TesseraFuzzSupport.h"

#include <tessera/LuSVNInitialize.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <unistd.h>

namespace tessera_fuzz {

namespace {

std::string& home()
{
    static std::string path;
    return path;
}

void removeHome()
{
    std::error_code ignored;
    std::filesystem::remove_all(home(), ignored);
}

}  // namespace

void initializeLibrary()
{
    static bool initialized = false;
    if (initialized)
        return;
    initialized = true;
    std::string pattern = (std::filesystem::temp_directory_path() / "tessera-fuzz-XXXXXX").string();
    if (!mkdtemp(pattern.data())) {
        std::perror("mkdtemp");
        std::abort();
    }
    home() = pattern;
    std::atexit(removeHome);
    setenv("HOME", pattern.c_str(), 1);
    LuSVNInitialize();
}

void require(bool holds, const char* invariant)
{
    if (holds)
        return;
    std::fprintf(stderr, "invariant violated: %s\n", invariant);
    std::abort();
}

}  // namespace tessera_fuzz

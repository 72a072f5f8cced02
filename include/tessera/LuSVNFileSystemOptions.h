// Options of creating a repository of the file-system (FSFS) back end; the
// fields, table entries and description are those of LuSVNRepositoryOptions
// ("{ <LuSVNFileSystemOptions: 0x...> compatibility: 1.6 }").
#pragma once

#include <tessera/LuSVNRepositoryOptions.h>

class TESSERA_EXPORT LuSVNFileSystemOptions : public LuSVNRepositoryOptions {
public:
    static LuSVNFileSystemOptions defaults() { return {}; }
};

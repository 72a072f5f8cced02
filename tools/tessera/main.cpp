// tessera: the command-line face of the library, in svn's manner. Each command
// lives in its own file and registers itself (Command.h); "tessera help"
// lists them.
#include "CommandLine.h"

int main(int argc, char** argv)
{
    return runTessera(argc, argv);
}

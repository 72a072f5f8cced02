// tessera status [options] [PATH...]: the svn client's status listing (and
// its XML), made from the library's status walk, plus a JSON form and the
// directories' aggregate status words.
#pragma once

/// Runs the command on the arguments after "status"; the exit status: 0, 1
/// for a failure, 2 for bad arguments.
int statusCommand(int argc, char** argv);

#!/bin/sh
# Doxygen input filter: the comment that opens each public header (everything
# before "#pragma once") is that header's overview; hand it to Doxygen as the
# file's documentation. The header itself keeps plain comments; in them "@"
# and "<" are plain text ("path@HEAD", "shared_ptr<const T>").
sed -e '1,/^#pragma once/ { /^\/\// { s|[@<\\]|\\&|g; s|^//|///| } }' -e '1 s|^|/// @file\n|' "$1"

#!/bin/sh
# Fails when libtessera exports a symbol that no installed header declares:
# every name of an exported symbol (namespace, class, member, function) must
# appear in include/tessera. Instantiations of the standard library's templates
# are left out: they are the compiler's, not the library's interface.
# usage: CheckExportedSymbols.sh LIBRARY INCLUDE_DIR
set -eu
library="$1" include="$2"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

# Every identifier of the public headers, one a line.
cat "$include"/tessera/*.h | grep -o '[A-Za-z_][A-Za-z0-9_]*' | sort -u > "$work/declared"

# The qualified name of each exported symbol: the kind prefix ("vtable for"),
# template arguments, parameters and return types taken away.
nm -D --defined-only -C "$library" | cut -d' ' -f3- |
  sed -e 's/^\(typeinfo name\|typeinfo\|vtable\|VTT\|guard variable\|non-virtual thunk to\|virtual thunk to\) for //' \
      -e 's/^\(non-virtual thunk\|virtual thunk\) to //' |
  awk '{
    # Drop template arguments and parameter lists, innermost first.
    while (gsub(/<[^<>]*>/, "")) {}
    while (gsub(/\([^()]*\)/, "")) {}
    sub(/\[abi:[a-z0-9]+\]/, "")
    # A lambda of a header template counts as its enclosing function.
    sub(/::\{lambda#[0-9]+\}.*/, "")
    # What is left after the last blank is the name (before it: a return type).
    n = split($0, words, " ")
    print words[n]
  }' | sort -u > "$work/exported"

: > "$work/undeclared"
while read -r name; do
  # Names beginning with "__" are the implementation's (sanitizer
  # instrumentation among them).
  case "$name" in std::* | __* | _init | _fini | "") continue ;; esac
  # Each part of the qualified name; a destructor is named after its class,
  # operators by their declaration "operator", "void*" by "void".
  for part in $(echo "$name" | sed -e 's/::/ /g' -e 's/[~*&]//g' -e 's/operator[^ ]*/operator/g'); do
    if ! grep -qx -- "$part" "$work/declared"; then
      echo "$name" >> "$work/undeclared"
      break
    fi
  done
done < "$work/exported"

count="$(wc -l < "$work/exported")"
if [ -s "$work/undeclared" ]; then
  echo "libtessera exports names that no installed header declares:"
  cat "$work/undeclared"
  exit 1
fi
echo "$count exported names, each declared in the installed headers"

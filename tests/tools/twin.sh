# shellcheck shell=sh
# Differential runs of tessera against svn, sourced by the test scripts.
#
# One repository is made and twinned (svnadmin dump | svnadmin load), each
# twin in a side directory of its own: $work/svn and $work/tessera, each
# holding repo/ and what the steps make. Each step runs once with svn in the
# svn side and once with tessera in the tessera side, and must give the same
# output lines (the sides' directories and "svn:"/"tessera:" prefixes
# masked), the same exit status and the same `svn status -v` of the working
# copy. twin_finish compares `svnadmin dump` of the twins, dates and UUIDs
# masked.
#
#   . twin.sh
#   twin_start TESSERA SVN SVNADMIN
#   twin_both 'svn mkdir -q -m init "$url/trunk"'      # the same on both sides
#   twin_step co @URL@/trunk wc                          # svn vs tessera
#   twin_finish                                          # exits with the verdict
#
# @URL@ in a step's arguments stands for the side's repository URL, @ROOTDIR@
# for the side's directory. After twin_serve, @SVNURL@ stands for the side's
# repository served by an svnserve of its own (anonymous users may write).

twin_failures=0
twin_passes=0

twin_fail() {
  echo "FAIL: $*"
  twin_failures=$((twin_failures + 1))
}

# twin_start TESSERA SVN SVNADMIN: the work directory, a clean configuration
# (HOME), the repository and its twin.
twin_start() {
  twin_tessera="$1" twin_svn="$2" twin_svnadmin="$3"
  work="$(mktemp -d)"
  trap 'twin_stop_servers; rm -rf "$work"' EXIT
  export HOME="$work/home" LC_ALL=C
  unset SVN_EDITOR VISUAL EDITOR
  mkdir -p "$HOME" "$work/svn" "$work/tessera"
  "$twin_svnadmin" create "$work/svn/repo"
  "$twin_svnadmin" create "$work/tessera/repo"
}

# twin_serve: an svnserve for each side on 127.0.0.1, stopped at exit. Call it
# after twin_twin, which makes the tessera side's repository anew. With
# twin_users set ("alice:secret bob:builder"), those users write and
# anonymous users only read.
twin_serve() {
  for side in svn tessera; do
    if [ -n "${twin_users:-}" ]; then
      printf '[general]\nanon-access = read\nauth-access = write\npassword-db = passwd\n' \
        >"$work/$side/repo/conf/svnserve.conf"
      printf '[users]\n' >"$work/$side/repo/conf/passwd"
      for user in $twin_users; do
        printf '%s = %s\n' "${user%%:*}" "${user#*:}" >>"$work/$side/repo/conf/passwd"
      done
    else
      printf '[general]\nanon-access = write\n' >"$work/$side/repo/conf/svnserve.conf"
    fi
    tries=0
    while :; do
      # A port picked at random, again when it is taken.
      port=$((20000 + $(od -An -N2 -tu2 /dev/urandom) % 40000))
      "${twin_svnadmin%admin}serve" -d --foreground --listen-host 127.0.0.1 --listen-port "$port" \
        -r "$work/$side" </dev/null >/dev/null 2>&1 &
      echo "$!" >"$work/$side.server"
      waited=0
      until "$twin_svn" info --non-interactive "svn://127.0.0.1:$port/repo" \
          >/dev/null 2>&1; do
        kill -0 "$(cat "$work/$side.server")" 2>/dev/null || break
        waited=$((waited + 1))
        [ "$waited" -lt 200 ] || break
        sleep 0.05
      done
      if kill -0 "$(cat "$work/$side.server")" 2>/dev/null; then
        echo "$port" >"$work/$side.port"
        break
      fi
      tries=$((tries + 1))
      [ "$tries" -lt 5 ] || { echo "no svnserve for the $side side"; exit 1; }
    done
  done
}

twin_stop_servers() {
  for side in svn tessera; do
    [ -f "$work/$side.server" ] && kill "$(cat "$work/$side.server")" 2>/dev/null || true
  done
}

# twin_twin: makes the tessera side's repository a copy of the svn side's,
# after the repository was filled through twin_svn_only.
twin_twin() {
  rm -rf "$work/tessera/repo"
  "$twin_svnadmin" create "$work/tessera/repo"
  "$twin_svnadmin" dump -q "$work/svn/repo" | "$twin_svnadmin" load -q "$work/tessera/repo"
}

# twin_both SCRIPT: the shell script in each side's directory, with $svn the
# svn client and $url the side's repository URL (for changes that tessera
# does not make: deletes, copies, properties, edits).
twin_both() {
  for side in svn tessera; do
    # shellcheck disable=SC2097,SC2098 # each side gets its own values
    (cd "$work/$side" && svn="$twin_svn" url="file://$work/$side/repo" side="$side" sh -c "$1") ||
      twin_fail "both sides: $1 ($side)"
  done
}

# The output of a side with the side's directory masked.
twin_mask() {
  sed -e "s|$work/svn|@ROOT@|g" -e "s|$work/tessera|@ROOT@|g" -e 's/^svn: /tessera: /' \
      -e 's|svn://127\.0\.0\.1:[0-9]*/|svn://@SERVER@/|g' \
      -e "s/'svn help/'tessera help/" -e "s/Try 'svn /Try 'tessera /" -e "s/Run 'svn /Run 'tessera /"
}

# Runs of item lines ("A    path", "D    path", " U   path", "   C path",
# "Reverted 'path'") sorted in place: Subversion sends the items of one
# directory in no fixed order.
twin_sort_items() {
  awk -v sort="LC_ALL=C sort" '
    /^[ADUCGERB ][ UCG][ B][ ADUC] [^ ]/ || /^Reverted / { if (!open) fflush(); open = 1; print | sort; next }
    { if (open) close(sort); open = 0; print }
    END { if (open) close(sort) }'
}

# twin_run SIDE PROGRAM ARGS...: runs the program in the side's directory,
# @URL@ replaced; output in $work/SIDE.out, status in $work/SIDE.status.
twin_run() {
  side="$1" program="$2"
  shift 2
  url="file://$work/$side/repo"
  svnurl="svn://127.0.0.1:$(cat "$work/$side.port" 2>/dev/null || echo 0)/repo"
  count=$#
  for argument in "$@"; do
    set -- "$@" "$(printf '%s\n' "$argument" |
      sed -e "s|@URL@|$url|g" -e "s|@SVNURL@|$svnurl|g" -e "s|@ROOTDIR@|$work/$side|g")"
  done
  shift "$count"
  status=0
  if [ -n "${twin_output:-}" ]; then
    # Standard output elsewhere (twin_output=/dev/full); only errors compared.
    (cd "$work/$side" && "$program" "$@") >"$twin_output" 2>"$work/$side.raw" </dev/null || status=$?
  else
    (cd "$work/$side" && "$program" "$@") >"$work/$side.raw" 2>&1 </dev/null || status=$?
  fi
  twin_mask <"$work/$side.raw" | twin_sort_items >"$work/$side.out"
  echo "$status" >"$work/$side.status"
}

# svn status -v of every working copy of a side, masked, each sorted.
twin_status() {
  for wc in "$work/$1"/wc*; do
    [ -d "$wc/.svn" ] || continue
    echo "== ${wc##*/}"
    # Sorted: svn lists changelists in no fixed order.
    "$twin_svn" status -v "$wc" 2>&1 | LC_ALL=C sort
  done | twin_mask
}

# twin_step ARGS...: the command once as "svn ARGS" and once as "tessera
# ARGS"; output, exit status and working copies must agree.
twin_step() {
  twin_run svn "$twin_svn" "$@"
  twin_run tessera "$twin_tessera" "$@"
  twin_compare "$*"
}

# Compares the outputs and statuses of the last runs and the working copies.
twin_compare() {
  if ! cmp -s "$work/svn.out" "$work/tessera.out" || ! cmp -s "$work/svn.status" "$work/tessera.status"; then
    twin_fail "$1: exit $(cat "$work/tessera.status") (svn $(cat "$work/svn.status"))"
    diff -u "$work/svn.out" "$work/tessera.out" | sed 's/^/    /' || true
  else
    twin_passes=$((twin_passes + 1))
  fi
  twin_status svn >"$work/svn.wc"
  twin_status tessera >"$work/tessera.wc"
  if ! cmp -s "$work/svn.wc" "$work/tessera.wc"; then
    twin_fail "$1: working copies differ afterwards"
    diff -u "$work/svn.wc" "$work/tessera.wc" | sed 's/^/    /' || true
  fi
}

# twin_same FILE...: the files, relative to the sides, hold the same bytes.
twin_same() {
  for file in "$@"; do
    cmp -s "$work/svn/$file" "$work/tessera/$file" || {
      twin_fail "$file differs"
      diff -u "$work/svn/$file" "$work/tessera/$file" | sed 's/^/    /' || true
    }
  done
}

# The dump of a side's repository with what differs between twins masked.
twin_dump() {
  "$twin_svnadmin" dump -q "$work/$1/repo" |
    sed -e 's/^UUID: .*/UUID: @UUID@/' -e 's/^[0-9]\{4\}-[0-9][0-9]-[0-9][0-9]T[0-9:.]*Z$/@DATE@/'
}

# Compares the repositories and ends the script with the verdict.
twin_finish() {
  twin_dump svn >"$work/svn.dump"
  twin_dump tessera >"$work/tessera.dump"
  cmp -s "$work/svn.dump" "$work/tessera.dump" || {
    twin_fail "the repositories differ"
    diff -u "$work/svn.dump" "$work/tessera.dump" | head -40 | sed 's/^/    /' || true
  }
  if [ "$twin_failures" -ne 0 ]; then
    echo "$twin_failures failed, $twin_passes steps agreed"
    exit 1
  fi
  echo "all $twin_passes steps agreed"
}

#!/bin/sh
# The progress line of tessera on a real terminal (a tmux pane): drawn while
# a check-out, an update or a commit runs, erased when it ends, and never
# with -q or when standard error is not a terminal.
# usage: tessera_progress_test.sh TESSERA SVNADMIN
set -eu
tessera="$1" svnadmin="$2"
work="$(mktemp -d)"
tmux="tmux -S $work/tmux.socket"
trap '$tmux kill-server 2>/dev/null || true; rm -rf "$work"' EXIT
export HOME="$work/home"
mkdir -p "$HOME"
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

"$svnadmin" create "$work/repo"
url="file://$work/repo"

# A shell in a pane whose every byte is kept, so that a line drawn and
# erased in between is seen too.
$tmux new-session -d -x 160 -y 40 "sh"
$tmux pipe-pane -o "cat >> $work/pane.raw"

# Runs the command in the pane and waits for it to end; the screen after
# it in $work/screen, the bytes it wrote in $work/written. Each step's end
# marker carries its number: on a busy machine the screen may still show the
# previous step's marker when the next step starts.
step=0
in_pane() {
  step=$((step + 1))
  : > "$work/pane.raw"
  $tmux send-keys "cd $work && $1; echo END-$step-\$?-OF-STEP" Enter
  tries=0
  until $tmux capture-pane -p | grep -q "^END-$step-[0-9]*-OF-STEP"; do
    tries=$((tries + 1))
    [ "$tries" -lt 300 ] || { fail "$1: did not end"; break; }
    sleep 0.1
  done
  # The pipe to pane.raw may lag behind the screen on a busy machine.
  tries=0
  until grep -q "END-$step-[0-9]*-OF-STEP" "$work/pane.raw"; do
    tries=$((tries + 1))
    [ "$tries" -lt 100 ] || { fail "$1: the pane's bytes never arrived"; break; }
    sleep 0.1
  done
  $tmux capture-pane -p > "$work/screen"
  cp "$work/pane.raw" "$work/written"
  $tmux send-keys "clear" Enter
  $tmux clear-history
}

# The progress line's figures: "0 B, 1 item", "2.0 KiB at 1.0 KiB/s, 9 items".
line='B(/s)?, [0-9]+ items?'

# drawn COMMAND: the line appeared while it ran and is gone from the screen.
drawn() {
  in_pane "$1"
  grep -Eq "$line" "$work/written" || fail "$1: no progress line was drawn"
  ! grep -Eq "$line" "$work/screen" || fail "$1: the progress line stayed: $(grep -E "$line" "$work/screen")"
  grep -q "^END-$step-0-OF-STEP" "$work/screen" || fail "$1: failed: $(cat "$work/screen")"
}

# not_drawn COMMAND: no progress line at all.
not_drawn() {
  in_pane "$1"
  ! grep -Eq "$line" "$work/written" || fail "$1: a progress line was drawn"
  grep -q "^END-$step-0-OF-STEP" "$work/screen" || fail "$1: failed: $(cat "$work/screen")"
}

mkdir -p "$work/import/dir"
for n in 1 2 3 4 5 6 7 8; do printf 'file %s\n' "$n" > "$work/import/dir/f$n.txt"; done
"$tessera" help >/dev/null
in_pane "$tessera checkout $url wc"
cp -r "$work/import/dir" "$work/wc/dir"
"$tessera" add -q "$work/wc/dir"
drawn "$tessera commit -m files wc"
grep -q "^Committed revision 1.$" "$work/screen" || fail "commit: no last line: $(cat "$work/screen")"
drawn "$tessera checkout $url wc2"
drawn "$tessera update -r 0 wc2"
grep -q "^Updated to revision 0.$" "$work/screen" || fail "update: no last line: $(cat "$work/screen")"
not_drawn "$tessera update -q wc2"
not_drawn "$tessera checkout $url wc3 2> $work/stderr-file"
! grep -Eq "$line" "$work/stderr-file" || fail "progress written to a file"

[ "$failures" -eq 0 ] || { echo "$failures failed"; exit 1; }
echo "all passed"

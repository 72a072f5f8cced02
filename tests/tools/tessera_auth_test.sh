#!/bin/sh
# tessera asking for credentials on a real terminal (a tmux pane): the same
# questions, answers and errors as svn's in the same pane. Against an
# svnserve that wants user "alice": a check-out with a wrong password
# retried, a status -u with the user given, a commit with the stored
# password, a non-interactive run without credentials and three wrong
# passwords. Against an HTTPS server with a self-signed certificate: the
# certificate rejected, accepted temporarily, then permanently, then not asked for.
# usage: tessera_auth_test.sh TESSERA SVN SVNADMIN APACHE2 OPENSSL APACHE-MODULES
# (svnserve lies beside svnadmin)
set -eu
tessera="$1" svn="$2" svnadmin="$3" svnserve="$(dirname "$3")/svnserve" apache="$4" openssl="$5" modules="$6"
work="$(mktemp -d)"
tmux="tmux -S $work/tmux.socket"
stop() { [ -f "$work/$1.pid" ] && kill "$(cat "$work/$1.pid")" 2>/dev/null || true; }
trap '$tmux kill-server 2>/dev/null || true; stop svnserve; stop httpd; rm -rf "$work"' EXIT
export HOME="$work/home"
mkdir -p "$HOME"
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# A repository for each client, so that both see the same revisions.
for client in svn tessera; do
  "$svnadmin" create "$work/$client.repo"
  printf '[general]\nanon-access = none\nauth-access = write\npassword-db = passwd\nrealm = Tessera Test Realm\n' \
    > "$work/$client.repo/conf/svnserve.conf"
  printf '[users]\nalice = wonderland\n' > "$work/$client.repo/conf/passwd"
done
# The HTTPS server, for svn's repository and tessera's, anonymous.
"$openssl" req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 -keyout "$work/server.key" \
  -out "$work/server.pem" -subj /CN=127.0.0.1 -addext subjectAltName=IP:127.0.0.1 2>/dev/null
httpd_conf() {
  printf 'ServerRoot %s\nServerName 127.0.0.1\nPidFile %s/httpd.pid\nDefaultRuntimeDir %s\n' "$work" "$work" "$work"
  printf 'Mutex file:%s default\nErrorLog %s/error.log\nLogLevel warn\nServerLimit 1\nThreadsPerChild 8\n' "$work" "$work"
  for module in mpm_event authz_core dav dav_svn ssl; do
    printf 'LoadModule %s_module %s/mod_%s.so\n' "$module" "$modules" "$module"
  done
  printf 'Listen 127.0.0.1:%s\n<VirtualHost 127.0.0.1:%s>\n  SSLEngine on\n' "$1" "$1"
  printf '  SSLCertificateFile %s/server.pem\n  SSLCertificateKeyFile %s/server.key\n' "$work" "$work"
  printf '  <Location /svn>\n    DAV svn\n    SVNParentPath %s/https\n    Require all granted\n  </Location>\n' "$work"
  printf '</VirtualHost>\n'
}
mkdir -p "$work/https"
for client in svn tessera; do "$svnadmin" create "$work/https/$client.repo"; done
tries=0
while :; do
  https_port=$((20000 + ($$ * 13 + tries * 557) % 40000))
  httpd_conf "$https_port" > "$work/httpd.conf"
  "$apache" -f "$work/httpd.conf" -DFOREGROUND 2>/dev/null &
  # It writes its pid file once listening, or ends.
  until [ -s "$work/httpd.pid" ] || ! kill -0 $! 2>/dev/null; do sleep 0.05; done
  [ -s "$work/httpd.pid" ] && break
  tries=$((tries + 1))
  [ "$tries" -lt 20 ] || { echo "no free port for httpd: $(cat "$work/error.log")"; exit 1; }
done

# A free port: svnserve -d fails at once on one in use.
tries=0
until port=$((20000 + ($$ * 7 + tries * 331) % 40000))
      "$svnserve" -d --listen-host 127.0.0.1 --listen-port "$port" -r "$work" --pid-file "$work/svnserve.pid" 2>/dev/null; do
  tries=$((tries + 1))
  [ "$tries" -lt 20 ] || { echo "no free port for svnserve"; exit 1; }
done

$tmux new-session -d -x 160 -y 50 "sh"

# wait_for PATTERN COUNT: until the screen holds COUNT lines matching.
wait_for() {
  waited=0
  until [ "$($tmux capture-pane -p | grep -c -- "$1")" -ge "$2" ]; do
    waited=$((waited + 1))
    [ "$waited" -lt 200 ] || { echo "FAIL: no '$1' (#$2) on the screen of $client:"; $tmux capture-pane -p; exit 1; }
    sleep 0.05
  done
}
# answer PATTERN COUNT KEYS: types KEYS and Enter at the COUNT-th question.
answer() { wait_for "$1" "$2" && $tmux send-keys -l "$3" && $tmux send-keys Enter; }
# start COMMAND: runs it on a clear screen in the client's own directory.
start() { $tmux send-keys "cd $work/$client && $1; echo END-\$?-OF-STEP" Enter; }
# finish STEP: the screen after the command, kept as $work/$client.STEP.
finish() {
  wait_for '^END-[0-9]*-OF-STEP' 1 || true
  $tmux capture-pane -p -J | sed -e 1d -e '/^$/d' -e '/^# *$/d' -e "s/^$client: /CLIENT: /" -e "s/$client.repo/CLIENT.repo/" \
    > "$work/$client.$1"
  clear_screen
}
clear_screen() {
  $tmux send-keys "clear" Enter
  until [ "$($tmux capture-pane -p | grep -c .)" -eq 1 ]; do sleep 0.05; done
}

clear_screen
for client in svn tessera; do
  program="$(eval echo \"\$$client\")"
  mkdir -p "$work/$client"
  # The first guess is the local user's name; a refusal asks for both.
  start "$program checkout --config-dir cfg svn://127.0.0.1:$port/$client.repo wc"
  answer "^Password for '" 1 wrong
  answer "^Username:" 1 alice
  answer "^Password for 'alice':" 1 wonderland
  answer "^Store password unencrypted (yes/no)?" 1 maybe
  answer "^Please type 'yes' or 'no':" 1 no
  finish checkout
  start "$program status -u --config-dir cfg --username alice wc"
  answer "^Password for 'alice':" 1 wonderland
  answer "^Store password unencrypted (yes/no)?" 1 yes
  finish status
  echo text > "$work/$client/wc/file.txt"
  "$program" add -q "$work/$client/wc/file.txt"
  start "$program commit --config-dir cfg -m file wc"
  finish commit
  start "$program update --config-dir other --non-interactive wc"
  finish noninteractive
  start "$program status -u --config-dir other --username alice wc"
  answer "^Password for 'alice':" 1 wrong1
  answer "^Username:" 1 alice
  answer "^Password for 'alice':" 2 wrong2
  answer "^Username:" 2 alice
  answer "^Password for 'alice':" 3 wrong3
  finish refused
  start "$program checkout --config-dir cfg https://127.0.0.1:$https_port/svn/$client.repo https"
  answer "^(R)eject, accept (t)emporarily or accept (p)ermanently?" 1 R
  finish rejected
  start "$program checkout --config-dir cfg https://127.0.0.1:$https_port/svn/$client.repo https"
  answer "^(R)eject, accept (t)emporarily or accept (p)ermanently?" 1 t
  finish temporarily
  start "$program status -u --config-dir cfg https"
  answer "^(R)eject, accept (t)emporarily or accept (p)ermanently?" 1 p
  finish permanently
  start "$program update --config-dir cfg https"
  finish trusted
done

for step in checkout status commit noninteractive refused rejected temporarily permanently trusted; do
  diff "$work/svn.$step" "$work/tessera.$step" > "$work/diff" || fail "$step: $(cat "$work/diff")"
done
grep -q '^Checked out revision 0.$' "$work/tessera.checkout" || fail "checkout: $(cat "$work/tessera.checkout")"
grep -q '^Committed revision 1.$' "$work/tessera.commit" || fail "commit: $(cat "$work/tessera.commit")"
grep -q '^END-1-OF-STEP' "$work/tessera.refused" || fail "refused: $(cat "$work/tessera.refused")"
grep -q 'password' "$work/tessera/cfg/auth/svn.simple/"* || fail "the password was not stored"
grep -q '^Checked out revision 0.$' "$work/tessera.temporarily" || fail "https: $(cat "$work/tessera.temporarily")"
grep -q 'ascii_cert' "$work/tessera/cfg/auth/svn.ssl.server/"* || fail "the certificate was not stored"
! grep -q 'Reject' "$work/tessera.trusted" || fail "asked again: $(cat "$work/tessera.trusted")"

[ "$failures" -eq 0 ] || { echo "$failures failed"; exit 1; }
echo "all passed"

#!/usr/bin/env bash
# The status check from the command line, against a server of its own.
#   status.sh KESTROM SANDBOX SOURCE
set -euo pipefail
kestrom=$1 sandbox=$2 source=$3

work=$(mktemp -d)
server=
trap 'if [ -n "$server" ]; then kill "$server"; fi; rm -rf "$work"' EXIT
mkfifo "$work/settings"
"$sandbox" --port 0 --state "$work/state" --seed "$source/examples/sandbox.json" --print-env >"$work/settings" &
server=$!
while read -r line; do
  [ "$line" = "# ready" ] && break
  eval "$line"
done <"$work/settings"
to_server=(--connect-to "$KESTROM_CONNECT_TO" --cacert "$KESTROM_CACERT" --documents "$work" --temporary "$work")

failures=0
# expect LABEL STATUS OUTPUT ARGUMENT…: what the program prints and ends with.
expect() {
  local label=$1 want_status=$2 want=$3 status=0
  shift 3
  "$kestrom" status "$@" >"$work/out" 2>"$work/err" </dev/null || status=$?
  if [ "$status" -ne "$want_status" ] || [ "$(cat "$work/out")" != "$want" ]; then
    echo "$label: ended with $status and printed $(cat "$work/out" "$work/err")"
    failures=$((failures + 1))
  fi
}

good='{"status":"in_progress","expiration":"2030-12-31 23:59:59"}'
expect "a good case" 0 "$good" --zip 05401 --access "K7M 2QX" "${to_server[@]}"
[ ! -s "$work/err" ] || { echo "logs nobody asked for"; failures=$((failures + 1)); }
expect "another environment" 0 "$good" --zip 05401 --access K7M2QX --environment staging "${to_server[@]}" --logs
grep -q "^\[KestromSDK\] 200 https://staging-api.kestrom.example/kestroms/status-check$" "$work/err" ||
  { echo "no log: $(cat "$work/err")"; failures=$((failures + 1)); }
expect "without a configuration it is production" 0 "$good" --zip 05401 --access K7M2QX --no-configuration --logs \
  "${to_server[@]}"
grep -q "https://api.kestrom.example/" "$work/err" || { echo "not production"; failures=$((failures + 1)); }
if grep -q "K7M" "$work/err"; then echo "the access code is in the log"; failures=$((failures + 1)); fi

"$kestrom" status --zip 05401 --access nonsense "${to_server[@]}" >"$work/out" 2>/dev/null && failures=$((failures + 1))
grep -q '^{"error":"apiError","message":"..*","code":401}$' "$work/out" ||
  { echo "a wrong code: $(cat "$work/out")"; failures=$((failures + 1)); }
unknown='{"error":"unknown","message":"","code":0}'
expect "an authority that is not trusted" 1 "$unknown" --zip 05401 --access K7M2QX --connect-to "$KESTROM_CONNECT_TO"
expect "nobody there" 1 "$unknown" --zip 05401 --access K7M2QX --connect-to 127.0.0.1:1

expect "no codes" 2 "" --zip 05401
expect "no address" 2 "" --zip 05401 --access K7M2QX --connect-to here
expect "no environment" 2 "" --zip 05401 --access K7M2QX --environment test
expect "no location" 2 "" --zip 05401 --access K7M2QX --location nowhere

[ "$failures" -eq 0 ] || { echo "$failures failed"; exit 1; }

#!/bin/bash
# Runs the built program as a user does: cli.sh KESTROM SOURCE-DIRECTORY
set -u

kestrom=$1
source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0

fail() {
  echo "FAILED: $1"
  echo "--- standard output"; head -c 2000 out
  echo "--- standard error"; head -c 2000 err
  failures=$((failures + 1))
}

# run LABEL STATUS ARGUMENT…: runs the program; its standard input is this function's.
run() {
  label=$1
  "$kestrom" "${@:3}" >out 2>err
  local status=$?
  [ "$status" -eq "$2" ] || fail "$label: exit status $status instead of $2"
}
prints() { grep -qF -- "$1" out || fail "$label: standard output lacks: $1"; }
lacks() { ! grep -qF -- "$1" out || fail "$label: standard output has: $1"; }
# One line on standard error, exactly this one; nothing on standard output.
complains() { [ "$(cat err)" = "$1" ] && [ ! -s out ] || fail "$label: expected only: $1"; }
complainsOf() { [ "$(wc -l <err)" -eq 1 ] && [ ! -s out ] && grep -qF -- "$1" err || fail "$label: one line of: $1"; }
silent() { [ ! -s err ] || fail "$label: standard error is not empty"; }

# Usage.
run "no subcommand" 2 </dev/null
run "unknown subcommand" 2 stroll </dev/null
run "no template" 2 walk </dev/null
run "no point in time" 2 walk t.json --now soon </dev/null
run "no finite point in time" 2 walk t.json --now inf </dev/null
run "two documents from one input" 2 walk - --answers - </dev/null
run "answers are kept, but not in a pipe" 2 preview t.json --answers - </dev/null
run "template and lines from one input" 2 preview - </dev/null
for command in "" walk lint preview; do
  run "help of kestrom $command" 0 $command --help </dev/null
  prints "$command"
  silent
done

# Documents that are no good: one line with file, path and reason.
node='"type":"text","key":"k","id":"n"'
echo "{\"sequence\":[{\"type\":\"module\",\"key\":\"m\",\"id\":\"m\",\"sequence\":[{$node,\"text\":\"Hi {{case.name}}\"}]}]}" >t.json
echo '{"sequence":[{"type":"text","id":"n"}]}' >key.json
run "missing key" 1 walk key.json </dev/null
complains 'key.json: sequence[0].key: required key "key" is missing'
printf '{"sequence":[{"type":"a\\nb","key":"k","id":"n"}]}' >type.json
run "a value with a line break stays on the line" 1 walk type.json </dev/null
complainsOf 'type.json: sequence[0].type: unknown value "a\nb"'
echo '[]' >list.json
run "no object" 1 walk list.json </dev/null
complainsOf 'list.json: expected an object'
run "no file" 1 walk none.json </dev/null
complainsOf 'none.json: '
run "a directory" 1 walk . </dev/null
complainsOf '.: '
printf '{"sequence":[' >short.json
run "cut short" 1 walk short.json </dev/null
complainsOf 'short.json: '
printf '{"sequence":[],"x":"\377"}' >utf8.json
run "no UTF-8" 1 walk utf8.json </dev/null
complainsOf 'utf8.json: '
printf '{"sequence":[]}\0' >nul.json
run "a NUL behind the document" 1 walk nul.json </dev/null
complainsOf 'nul.json: '
head -c 1000000 /dev/zero | tr '\0' '[' >deep.json
run "a million lists" 1 walk deep.json </dev/null
complainsOf 'deep.json: '
head -c 100000000 /dev/zero >large.json
run "a hundred megabytes" 1 walk large.json </dev/null
complainsOf 'large.json: '
run "a hundred megabytes from a pipe" 1 walk - <large.json
complainsOf 'standard input: '
rm large.json
echo '[{"value":"x","keyValue":{"key":"k","value":"x"},"iterationId":0,"messageId":"n","moduleId":"m","locationType":"none","answeredAt":"yesterday"}]' >device.json
run "a device's answer without a date" 1 walk t.json --answers device.json </dev/null
complainsOf 'device.json: [0].answeredAt: '
echo '{"answers":[{"value":"x","iterationId":0,"messageId":"n","moduleId":"m","locationType":"none","answeredAt":"2024-01-31T12:00:00.5Z"}]}' >server.json
run "a server's answer without a value" 1 walk t.json --answers server.json </dev/null
complainsOf 'server.json: answers[0].keyValue: '
run "a case that is no object" 1 walk t.json --case list.json </dev/null
complainsOf 'list.json: '

# The walk.
run "a question" 0 walk t.json --now 1.5 --compact </dev/null
silent
[ "$(cat out)" = '{"progress":{"totalModuleCount":1,"currentModuleCount":0,"isFinished":false},"updatedMessages":[{"text":"Hi {{case.name}}","messageId":"n","timestamp":1.5,"type":"text","editable":false,"messageKey":"k","moduleId":"m","moduleKey":"m"}]}' ] ||
  fail "$label: the object differs"
cp out compact
run "the template from the standard input" 0 walk - --now 1.5 --compact <t.json
cmp -s out compact || fail "$label: another result than from the file"
run "indented" 0 walk t.json --now 1.5 </dev/null
[ "$(tr -d ' \n' <out)" = "$(tr -d ' \n' <compact)" ] && [ "$(wc -l <out)" -gt 10 ] || fail "$label: not the same object"
echo '{"name":"Ada"}' >case.json
run "a case fills the rows and nothing else" 0 walk t.json --now 1.5 --case case.json --compact </dev/null
prints '"text":"Hi {{case.name}}"'
prints '"messages":[{"type":"BotTextMessage","identifier":"nm0","isEditable":false,"id":"n","text":"Hi Ada","trigger":{"text":{}},"iterationId":0,"messageKey":"k","moduleId":"m","moduleKey":"m","messageType":"text","grouping":"standalone"}]'
lacks editableMessages
# A device that moved its documents: only the name of a file counts.
sed 's/"yesterday"/0/; s#"value":"x"#"value":"file:///old/a.jpeg"#g' device.json >moved.json
run "a local file is looked for in the documents directory" 0 walk t.json --answers moved.json --documents /new --compact </dev/null
prints '"value":{"url":{"_0":"file:///new/a.jpeg"}}'
prints '"timestamp":978307200000'
prints '"isFinished":true'
"$kestrom" walk t.json >/dev/full 2>err && fail "a full disk goes unnoticed"

example=$source/examples/home-inspection
run "the example is finished by its answers" 0 walk "$example.json" --answers "$example.answers.json" --case "$example.case.json" </dev/null
prints '"isFinished": true'

# The preview.
label="the example's script"
(cd "$source" && "$kestrom" preview examples/home-inspection.json --case examples/home-inspection.case.json \
  --answers "$work/kept.json" --script examples/home-inspection.script) >out 2>err </dev/null || fail "$label: not finished"
prints "finished: 10 of 10 modules"
lacks '{{'
silent
run "what a script answered is a finished conversation" 0 walk "$example.json" --answers kept.json </dev/null
prints '"isFinished": true'
run "a kept conversation that is finished" 0 preview "$example.json" --answers kept.json </dev/null
prints "finished: 10 of 10 modules"

cat >two.json <<'JSON'
{"sequence":[{"type":"module","key":"m","id":"m","sequence":[
  {"type":"text","key":"name","id":"name-id","text":"Name?\u001b[31m"},
  {"type":"number","key":"age","id":"age-id","text":"Age?","options":{"minValue":1,"maxValue":9}}]}]}
JSON
printf '# one answer\n\nAda\n' >one.script
run "a script that runs out" 1 preview two.json --answers half.json --script one.script </dev/null
prints "you: Ada"
grep -qF 'one.script:3: ' err && grep -qF '"age-id"' err || fail "$label: the pending question is not named"
run "a pipe goes on where the script ended" 0 preview two.json --answers half.json <<<"5"
prints "you: Ada"
prints "finished: 1 of 1 modules, 2 answers"
silent
printf 'Ada\n50\n' >wrong.script
run "a script's refused line" 1 preview two.json --script wrong.script </dev/null
[ "$(cat err)" = "wrong.script:2: Enter a number between 1 and 9" ] || fail "$label: $(cat err)"
run "a pipe is asked again" 0 preview two.json < <(printf 'Ada\n50\n/state\n5\n')
[ "$(cat err)" = "Enter a number between 1 and 9" ] || fail "$label: $(cat err)"
prints 'pending: "age-id"'
prints "finished: 1 of 1 modules"
lacks $'\x1b'
run "a script from the standard input" 0 preview two.json --script - < <(printf 'Ada\n5\n')
prints "finished: 1 of 1 modules"
run "end of input" 0 preview two.json </dev/null
run "quit" 0 preview two.json <<<"/quit"
lacks finished
echo '{"answers":[]}' >history.json
run "the server's form is not replaced by the device's" 1 preview two.json --answers history.json </dev/null
complainsOf 'history.json: '
[ "$(cat history.json)" = '{"answers":[]}' ] || fail "$label: the file has changed"
run "answers that cannot be kept" 1 preview two.json --answers missing/answers.json <<<"Ada"
grep -qF 'missing/answers.json: ' err || fail "$label: $(cat err)"
lacks "you: Ada"

# The linter.
run "a good template" 0 lint "$example.json" </dev/null
run "a broken template" 1 lint key.json </dev/null
prints "key.json:"

[ "$failures" -eq 0 ] || { echo "$failures failed"; exit 1; }

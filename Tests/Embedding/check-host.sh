#!/usr/bin/env bash
# Runs a host and looks at what it prints and how it ends.
#   check-host.sh COMMAND…
set -euo pipefail
output=$("$@")
[[ $output == "embedding Kestrom 1.0: @(#)PROGRAM:Kestrom  PROJECT:Kestrom-1"*"organization my-organization" ]] || {
  printf 'unexpected output:\n%s\n' "$output" >&2
  exit 1
}

#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs every command that a page shows in a block of ```console, the first line of the block, and compares what comes
# out, and the status that a line behind the block names, with what the page says.
# Usage: negotiations.sh PAGE FOLDER-OF-THE-PROGRAM [--write]; --write puts what comes out into the page.
set -euo pipefail
page=$(realpath "$1")
PATH=$(realpath "$2"):$PATH
cd "$(dirname "$page")"
new=$(mktemp)
trap 'rm -f "$new"' EXIT

commands=0
pending=  # whether the status of the last command is still to be told
while IFS= read -r line; do
  if [ "$line" = '```console' ]; then
    [ -z "$pending" ] || break
    IFS= read -r command
    printf '%s\n' "$line" "$command"
    status=0
    bash -c "${command#\$ }" 2>&1 || status=$?
    while [ "$line" != '```' ] && IFS= read -r line; do :; done
    commands=$((commands + 1)) pending=yes
  elif [[ $line == "Exit status "* ]]; then
    line="Exit status $status." pending=
  fi
  printf '%s\n' "$line"
done <"$page" >"$new"

if [ "$commands" = 0 ] || [ -n "$pending" ]; then
  echo "There is no command in $page, or no line with the exit status behind one of them."
  exit 1
fi
if [ "${3:-}" = --write ]; then cp "$new" "$page"; fi
diff -u "$page" "$new"

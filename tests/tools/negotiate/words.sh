#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Compares the words of the help, the manual page and the completion. Usage: words.sh PROGRAM SOURCE-FOLDER
set -euo pipefail
program=$1
source=$2
failed=0
fail() { echo "$*"; failed=1; }

. "$source/corvane-negotiate.bash"

# complete_words WORD...: what is offered for the last one.
complete_words() {
  COMP_WORDS=(corvane-negotiate "$@")
  COMP_CWORD=$#
  _corvane_negotiate
}
completed() { complete_words "$@"; printf '%s\n' "${COMPREPLY[@]}"; }
sorted() { tr ' ' '\n' | sort -u; }

# The manual, its markup and hyphens as people read them.
manual=$(sed 's/\\-/-/g' "$source/corvane-negotiate.1")

commands=$("$program" --help | sed -n 's/^  corvane-negotiate \([a-z]*\) .*/\1/p' | sorted)
[ "$(completed '' | grep -v '^-' | sorted)" = "$commands" ] || fail "the completion has other commands than the help"
for command in $commands; do
  grep -q "$command" <<<"$manual" || fail "the manual lacks $command"
  options=$("$program" "$command" --help | grep -oE -- '^ *(-h \[ )?--[a-z]+' | grep -o -- '--.*' | sorted)
  [ "$(completed "$command" -- | sorted)" = "$options" ] || fail "the completion of $command has other options than its help"
  for option in $options; do
    grep -q -- "$option" <<<"$manual" || fail "the manual lacks $option"
  done
done

help=$("$program" check --help | tr -s ' \n' ' ')
default=$(grep -o 'If this is not given[A-Za-z, ]*\.' <<<"$help")
grep -qF "$default" <<<"$manual" || fail "the manual has other default reasons"
reasons=$(grep -o 'some of [A-Za-z, ]*' <<<"$help" | grep -oE '[A-Z][A-Za-z]+' | sorted)
[ "$(completed check --refuse '' | grep '^[A-Z]' | sorted)" = "$reasons" ] || fail "the completion has other reasons"
for reason in $reasons; do
  grep -q "^\.B $reason" <<<"$manual" || fail "the manual lacks the reason $reason"
done
[ "$(completed check --refuse = OptionalFailed,Prot)" = OptionalFailed,ProtocolLost ] || fail "no second reason is completed"
[ "$(completed check --colour a)" = $'auto\nalways' ] || fail "no colour is completed"
[ "$(completed matrix offers --m)" = --markdown ] || fail "no option is completed before --"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
(
  cd "$folder" && touch -- --mine
  [ "$(completed matrix offers -- --m)" = --mine ] && [ "$(completed matrix offers --refuse all -- request --m)" = --mine ]
) || fail "no file is completed behind --"
cd "$source" && [ "$(completed lint corvane-negotiate.b)" = corvane-negotiate.bash ] || fail "no file is completed"

if command -v groff >/dev/null; then
  warnings=$(groff -man -Tutf8 -ww "$source/corvane-negotiate.1" 2>&1 >/dev/null)
  [ -z "$warnings" ] || fail "$warnings"
fi
exit "$failed"

#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs scripts/lib/mutate.py on a small project whose mutants are known. Takes the folder of our sources. Works in the
# current folder.
set -euo pipefail
rm -rf sample
cp -r "$1/tests/mutation/sample" .
cd sample
git init -q
git add .
code=0
/usr/bin/python3 "$1/scripts/lib/mutate.py" --all >output || code=$?
grep -v '^\[' output | sed 's/; [0-9]* s for the tests$//' | diff expected/output.txt -
[ "$code" -eq 1 ]  # because the rate is below the bar

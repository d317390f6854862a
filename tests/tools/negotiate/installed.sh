#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs, moves what was installed, and runs the program from there.
# Usage: installed.sh CMAKE BUILD-FOLDER FOLDER BINDIR DATADIR MANDIR
set -euo pipefail
cmake=$1 build=$2 folder=$3 bindir=$4 datadir=$5 mandir=$6
rm -rf "$folder/prefix" "$folder/moved"
"$cmake" --install "$build" --prefix "$folder/prefix" >/dev/null
mv "$folder/prefix" "$folder/moved"
cd "$folder/moved"

"$bindir/corvane-negotiate" --version
printf '{"protocolConfigs":[]}' | "$bindir/corvane-negotiate" lint -
ls "$mandir/man1/corvane-negotiate.1" "$datadir/bash-completion/completions/corvane-negotiate" \
  "$datadir"/corvane_common/schema/protocol{Configs,Offers,Resolutions}.schema.json

#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Fails if a file that can carry a licence line does not.
set -euo pipefail
cd "$(dirname "$0")/../.."

# What has no comments, or is data that a test reads byte by byte.
without_comments='^LICENSE$|^LICENSES/|\.json$|^\.gitignore$|/corpus/|/expected/|\.xml$|\.abi\.gz$|\.svg$|\.symbols$|^debian/(changelog|source/format)$|/usage$'
unlicensed=$(git ls-files | grep -vE "$without_comments" | xargs grep -L 'SPDX-License-Identifier: Apache-2.0' || true)
if [ -n "$unlicensed" ]; then
  printf 'without an SPDX line:\n%s\n' "$unlicensed" >&2
  exit 1
fi

# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# A Debian of one's own to try things in: a folder with a system in it, entered with chroot. Takes root. A tree is
# removed with --one-file-system, lest something that was mounted in it be emptied.

# debian_mirror: the one that this machine uses.
debian_mirror() {
  local mirror
  mirror=$(apt-get indextargets --format '$(REPO_URI) $(LABEL)' 'Created-By: Packages' 2>/dev/null |
    sed -n 's/ Debian$//p' | head -n 1)
  if [ -z "$mirror" ]; then
    echo "this machine's packages come from no mirror of Debian" >&2
    return 1
  fi
  echo "$mirror"
}

# bare_debian RELEASE ARCHITECTURE TREE [DEBOOTSTRAP-ARGUMENT...]: makes the tree, unless it is there.
bare_debian() {
  local release=$1 architecture=$2 tree=$3 mirror
  shift 3
  [ ! -f "$tree/ready" ] || return 0
  mirror=$(debian_mirror)
  rm -rf --one-file-system "$tree"
  mkdir -p "$tree"
  debootstrap --variant=minbase --arch="$architecture" "$@" "$release" "$tree" "$mirror"
  touch "$tree/ready"
}

# inside TREE COMMANDS [ARGUMENT...]: runs the commands in the tree. What is mounted is so for this call alone.
inside() {
  local tree=$1 commands=$2
  shift 2
  unshare --mount --pid --fork --kill-child bash -euc '
    tree=$1
    shift
    mount -t proc proc "$tree/proc"
    mkdir -p "$tree/dev/pts"
    mount -t devpts -o newinstance,ptmxmode=0666 devpts "$tree/dev/pts"  # the tests of the program open a terminal
    exec chroot "$tree" env HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive bash -euo pipefail -c "$@"' \
    inside "$tree" "$commands" inside "$@"
}

# copy_sources FOLDER: what is in our tree, committed or not, but for what git is told to ignore.
copy_sources() {
  mkdir -p "$1"
  git ls-files -z --cached --others --exclude-standard |
    while IFS= read -r -d '' file; do [ ! -f "$file" ] || printf '%s\0' "$file"; done |
    tar --create --null --files-from=- | tar --extract --no-same-owner --directory="$1"
}

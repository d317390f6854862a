# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# Makes a Debian system in a folder (a tree), to try things in with chroot. Needs root. Remove a tree with
# --one-file-system: then rm does not empty what is mounted in it.

# debian_mirror: prints the mirror of Debian that this machine uses.
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

# bare_debian RELEASE ARCHITECTURE TREE [DEBOOTSTRAP-ARGUMENT...]: makes the tree if it is not there.
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

# inside TREE COMMANDS [ARGUMENT...]: runs the commands in the tree. What it mounts is gone after the call. Of the
# environment the tree gets the proxies only: a compiler or a flag that is set for this machine does not fit there.
inside() {
  local tree=$1 commands=$2
  shift 2
  unshare --mount --pid --fork --kill-child bash -euc '
    tree=$1
    shift
    mount -t proc proc "$tree/proc"
    mkdir -p "$tree/dev/pts"
    mount -t devpts -o newinstance,ptmxmode=0666 devpts "$tree/dev/pts"  # the tests of the program open a terminal
    exec chroot "$tree" env -i HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive TERM="${TERM:-dumb}" \
      PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
      ${http_proxy:+http_proxy="$http_proxy"} ${https_proxy:+https_proxy="$https_proxy"} \
      bash -euo pipefail -c "$@"' \
    inside "$tree" "$commands" inside "$@"
}

# copy_sources FOLDER: copies our files, committed or not, except those that git ignores.
copy_sources() {
  mkdir -p "$1"
  git ls-files -z --cached --others --exclude-standard |
    while IFS= read -r -d '' file; do [ ! -f "$file" ] || printf '%s\0' "$file"; done |
    tar --create --null --files-from=- | tar --extract --no-same-owner --directory="$1"
}

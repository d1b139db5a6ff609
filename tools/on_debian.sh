#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs ./run on another release of Debian: in a root that is made once and kept, with processes, mounts and, unless
# the command installs packages, a network of its own. Needs root. Build and compiler cache stay beside the root.
#
#     on_debian.sh RELEASE COMMAND…        on_debian.sh trixie test
set -euo pipefail
release=$1
shift
tree=$(realpath "$(dirname "${BASH_SOURCE[0]}")/..")
cache=${XDG_CACHE_HOME:-$HOME/.cache}/orven
made=$cache/$release-$(sha256sum <"$tree/packages.txt" | cut -c 1-12)

# in_root ROOT OPTIONS COMMAND…: ./run COMMAND… in this root and in new namespaces that end with it; OPTIONS are
# further ones of unshare(1).
in_root() {
  local root=$1 options=$2
  shift 2
  mkdir -p "$tree/build" "$cache/$release-build" "$cache/$release-ccache" "$root"/{orven,var/cache/ccache}
  # shellcheck disable=SC2016,SC2086  # the inner shell expands it; several options
  unshare --mount --pid --fork --kill-child $options bash -euc '
    root=$1 tree=$2 build=$3 ccache=$4
    mount --bind "$root" "$root"
    mount --bind "$tree" "$root/orven"
    mount --bind "$build" "$root/orven/build"
    mount --bind "$ccache" "$root/var/cache/ccache"
    mount -t proc proc "$root/proc"
    mount --rbind /dev "$root/dev"
    mount -t tmpfs tmpfs "$root/dev/shm"
    mount -t tmpfs tmpfs "$root/run"
    ip link set lo up
    cd "$root"
    pivot_root . . # tests mount, too: for that the root must be a mount
    umount --lazy .
    exec env -i HOME=/root "TERM=${TERM:-dumb}" PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
      LC_ALL=C.UTF-8 CCACHE_DIR=/var/cache/ccache /orven/run "${@:5}"
  ' in_root "$root" "$tree" "$cache/$release-build" "$cache/$release-ccache" "$@"
}

# A small system of this release from this system's package archive, with the packages of packages.txt.
make_root() {
  local root=$cache/$release.new own
  rm -rf "$cache/$release"-????????????
  [[ ! -e $root ]] || rm -rf --one-file-system "$root"
  own=$(. /etc/os-release && echo "$VERSION_CODENAME")
  # shellcheck disable=SC2016  # the names are apt's
  apt-get indextargets --format 'deb $(REPO_URI) $(CODENAME) $(COMPONENT)' 'Created-By: Packages' 'Origin: Debian' |
    sort -u | sed "s/ $own/ $release/" |
    mmdebstrap --variant=apt --mode=root --include=passwd "$release" "$root" -
  # No service of this root may start, and nothing in it must survive a power failure.
  printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d"
  chmod 755 "$root/usr/sbin/policy-rc.d"
  echo force-unsafe-io >"$root/etc/dpkg/dpkg.cfg.d/unsafe-io"
  cp -L /etc/resolv.conf "$root/etc/resolv.conf"
  in_root "$root" '' packages
  mv "$root" "$made"
}

mkdir -p "$cache"
[[ -d $made ]] || make_root
case $1 in
  package) in_root "$made" '' "$@" ;;
  *) in_root "$made" --net "$@" ;;
esac

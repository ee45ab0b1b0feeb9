#!/usr/bin/env bash
# Runs a command on a fresh clone of the current commit inside a bare Debian 12
# root, so that a package the developer machine happens to have cannot hide a
# missing install step.
#
#   bash scripts/fresh-root.sh [command...]     (default: bash scripts/test.sh)
#
# Runs as root. The bare root (debootstrap --variant=minbase bookworm, from the
# Debian mirror this machine's apt names) is made once and cached in
# $OXA_FRESH_CACHE (default /var/tmp/oxa-ci); every run works on a new copy of
# it, so every run starts bare. Downloaded .deb files are kept between runs
# (installing them is still up to the project's scripts). When the bare root
# cannot be made, one loud line says so and the command runs here directly.
# Exit status: the command's own.
set -euo pipefail

[ "$(id -u)" -eq 0 ] || { echo "fresh-root: run it as root" >&2; exit 2; }
project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cache=${OXA_FRESH_CACHE:-/var/tmp/oxa-ci}
base=$cache/base
[ $# -gt 0 ] || set -- bash scripts/test.sh

run_directly() {
    echo "!!!!! fresh-root: NO BARE DEBIAN ROOT ($1): running '${*:2}' directly on this machine !!!!!" >&2
    cd "$project"
    exec "${@:2}"
}

debian_mirror() {
    local mirror=""
    [ -r /etc/apt/sources.list.d/debian.sources ] &&
        mirror=$(awk '/^URIs:/ {print $2; exit}' /etc/apt/sources.list.d/debian.sources)
    [ -n "$mirror" ] || [ ! -r /etc/apt/sources.list ] ||
        mirror=$(awk '$1 == "deb" && $2 !~ /security/ {print $2; exit}' /etc/apt/sources.list)
    echo "${mirror:-http://deb.debian.org/debian}"
}

# Makes the cached bare root once; a bootstrap that fails leaves no cache behind.
make_base() {
    [ -x "$base/bin/bash" ] && return 0
    if ! command -v debootstrap >/dev/null; then
        apt-get update -qq >/dev/null 2>&1 || true
        DEBIAN_FRONTEND=noninteractive apt-get install -y -qq debootstrap >/dev/null 2>&1 || return 1
    fi
    local mirror
    mirror=$(debian_mirror)
    mkdir -p "$cache"
    rm -rf "$base.tmp"
    echo "fresh-root: bootstrapping a bare Debian 12 root from $mirror (once)..."
    debootstrap --variant=minbase bookworm "$base.tmp" "$mirror" >"$cache/debootstrap.log" 2>&1 || {
        rm -rf "$base.tmp"
        return 1
    }
    mv "$base.tmp" "$base"
}

make_base || run_directly "debootstrap from $(debian_mirror) failed, see $cache/debootstrap.log" "$@"

run=$(mktemp -d "$cache/run.XXXXXX")
mounted=()

mounts_below() { awk -v root="$run/" 'index($2, root) == 1 {print $2}' /proc/self/mounts | sort -r; }

cleanup() {
    local m
    for ((i = ${#mounted[@]} - 1; i >= 0; i--)); do
        m=${mounted[i]}
        umount -R "$m" 2>/dev/null || umount -R -l "$m" 2>/dev/null || true
    done
    for m in $(mounts_below); do umount -l "$m" 2>/dev/null || true; done
    # Never delete through a mount that is still there (it could be the host's /dev).
    if [ -z "$(mounts_below)" ]; then
        rm -rf "$run"
    else
        echo "fresh-root: $run still has mounts; left in place" >&2
    fi
}
trap cleanup EXIT
trap 'exit 130' INT TERM

bind_mount() { # bind_mount HOST_DIR ROOT_DIR: a recursive bind that never propagates back
    mkdir -p "$2"
    mount --rbind "$1" "$2"
    mounted+=("$2")
    mount --make-rslave "$2"
}

cp -a "$base/." "$run/"
cp /etc/resolv.conf "$run/etc/resolv.conf" 2>/dev/null || true
git clone -q "$project" "$run/src/oxa"
git -C "$run/src/oxa" checkout -q "$(git -C "$project" rev-parse HEAD)"

mount -t proc proc "$run/proc"
mounted+=("$run/proc")
bind_mount /sys "$run/sys"
bind_mount /dev "$run/dev"
mkdir -p "$cache/apt-archives/partial"
bind_mount "$cache/apt-archives" "$run/var/cache/apt/archives"

echo "fresh-root: running '$*' on a fresh clone of $(git -C "$project" rev-parse --short HEAD) in a bare Debian 12 root..."
set +e
chroot "$run" /usr/bin/env -i HOME=/root LANG=C.UTF-8 CI=true OXA_IN_FRESH_ROOT=1 \
    PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
    bash -c 'cd /src/oxa && "$@"' bash "$@"
rc=$?
set -e
echo "fresh-root: '$*' exited $rc"
exit $rc

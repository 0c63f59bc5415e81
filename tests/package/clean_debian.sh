# shellcheck shell=bash
# For the scripts beside it to source: runs them again, at the project's root, with a Debian at $root that has nothing
# but its base. Needs root; packages come by the machine's own apt settings, and the base is kept in build/ for the next
# time.
self=$(realpath "$0")
cd "$(dirname "$self")/../.." || exit

# A name space of its own: what is mounted in it is gone with it.
if [[ -z ${VORN_CLEAN_ROOT-} ]]; then
    [[ $(id -u) -eq 0 ]] || exec sudo -n "$self" "$@"
    VORN_CLEAN_ROOT=$(mktemp -d)
    export VORN_CLEAN_ROOT
    trap 'rm -rf --one-file-system "$VORN_CLEAN_ROOT"' EXIT
    unshare --mount --pid --fork "$self" "$@"
    exit
fi
root=$VORN_CLEAN_ROOT

fail() {
    echo "$(basename "$self"): $*" >&2
    exit 1
}
inside() {
    chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 "$@"
}

# shellcheck source=/dev/null
codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
base=build/clean-$codename.tar
mkdir -p build
if [[ ! -f $base ]]; then
    tools/setup package
    # shellcheck disable=SC2016 # apt's own variable
    mirror=$(apt-get indextargets --format '$(SITE)' 'Created-By: Packages' "Codename: $codename" | head -n 1)
    debootstrap --variant=minbase "$codename" "$root" "$mirror" >build/debootstrap.log || fail "see build/debootstrap.log"
    tar -C "$root" -cf "$base.part" . && mv "$base.part" "$base"
else
    tar -C "$root" -xf "$base"
fi
chmod 755 "$root"
cp -L /etc/resolv.conf /etc/hosts "$root/etc/"
rm -f "$root/etc/apt/sources.list"
cp -r /etc/apt/sources.list* /etc/apt/apt.conf.d "$root/etc/apt/"
mount -t proc proc "$root/proc"

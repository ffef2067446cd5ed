#!/bin/sh
# check-packages.sh CPACK BUILD_DIRECTORY SCRATCH: the packages hold the library, the Debian one
# installs and leaves nothing behind when it is removed. It goes below SCRATCH, not into the system.
set -eu

build=$2
scratch=$3
rm -rf "$scratch"
mkdir -p "$scratch/root/var/lib/dpkg/updates" "$scratch/root/var/lib/dpkg/info" "$scratch/tar"
touch "$scratch/root/var/lib/dpkg/status"
(cd "$build" && "$1" -B "$scratch") >"$scratch/cpack.log" 2>&1 ||
    { cat "$scratch/cpack.log"; exit 1; }

# The package's scripts renew the linker's cache, which here would be the system's.
mkdir "$scratch/bin"
echo '#!/bin/sh' >"$scratch/bin/ldconfig"
chmod +x "$scratch/bin/ldconfig"

installed() { (cd "$1" && find . ! -type d ! -path './var/*' | sort); }
below_root() {
    PATH="$scratch/bin:$PATH" fakeroot dpkg --root="$scratch/root" --log=/dev/null \
        --force-not-root --force-depends --force-script-chrootless "$@" >/dev/null
}

tar -C "$scratch/tar" --strip-components=1 -xzf "$scratch"/varn3d-*.tar.gz
below_root --install "$scratch"/varn3d_*.deb
installed "$scratch/root"
installed "$scratch/root/usr" >"$scratch/from-deb"
installed "$scratch/tar" | diff - "$scratch/from-deb"
grep -q '^\./include/dt3Library/Varn_3D\.h$' "$scratch/from-deb"
grep -q '/libvarn3d\.' "$scratch/from-deb"

below_root --purge varn3d
[ -z "$(installed "$scratch/root")" ]

# shellcheck shell=sh
# Sourced by the other scripts.

# Installs those of the named Debian packages that are missing. Needs root, or sudo, only if any is.
install_missing() {
    missing=
    for package in "$@"; do
        state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
        [ "$state" = installed ] || missing="$missing $package"
    done
    [ -n "$missing" ] || return 0
    if ! command -v apt-get >/dev/null; then
        echo "No apt-get here; going on without making sure of:$missing" >&2
        return 0
    fi
    echo "Installing:$missing"
    as_root=
    [ "$(id -u)" = 0 ] || as_root=sudo
    # The names are to be split into words.
    # shellcheck disable=SC2086
    $as_root env DEBIAN_FRONTEND=noninteractive sh -c '
        apt-get update -qq &&
        apt-get install -y -qq --no-install-recommends "$@" >/dev/null' sh $missing
}

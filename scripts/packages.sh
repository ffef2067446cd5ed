# shellcheck shell=sh
# Sourced by the other scripts.

# Installs those of the named Debian packages that are missing. Needs root, or sudo, only if any is;
# without either it says what to ask root for, and ends the script.
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
    as_root=
    if [ "$(id -u)" != 0 ]; then
        as_root=sudo
        if ! sudo -v 2>/dev/null; then
            echo "Packages are missing that only root can install. Ask for:" >&2
            echo "    apt-get install$missing" >&2
            exit 1
        fi
    fi
    echo "Installing:$missing"
    # The names are to be split into words.
    # shellcheck disable=SC2086
    $as_root env DEBIAN_FRONTEND=noninteractive sh -c '
        apt-get update -qq &&
        apt-get install -y -qq --no-install-recommends "$@" >/dev/null' sh $missing
}

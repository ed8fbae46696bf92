# shellcheck shell=sh
# SPDX-License-Identifier: MIT
# Sourced by demo and check: brings the Debian packages that the file tools/debian-packages lists.

# Whether dpkg has the package $1.
is_installed() {
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# Prints the entries of the kinds $@ in the list, each once.
listed_packages() {
    for kind; do
        sed -n -e "s/^${kind}[[:space:]]\{1,\}\([^[:space:]]*\).*/\1/p" tools/debian-packages
    done | sort -u
}

# Prints those of the entries $@ of which no name is installed.
missing_packages() {
    for entry; do
        for name in $(echo "$entry" | tr '|' ' '); do
            ! is_installed "$name" || continue 2
        done
        echo "$entry"
    done
}

# Prints the names to install for the entries $@: of several the first that the system's release has.
chosen_packages() {
    for entry; do
        chosen=${entry%%|*}
        for name in $(echo "$entry" | tr '|' ' '); do
            if [ -n "$(apt-cache madison "$name")" ]; then
                chosen=$name
                break
            fi
        done
        echo "$chosen"
    done
}

# Installs what is missing of the kinds $@ (see tools/debian-packages); says why when it cannot. Returns
# non-zero then.
install_packages() {
    if ! command -v dpkg-query >/dev/null 2>&1; then
        echo "This is not a Debian system; tools/debian-packages lists what is needed." >&2
        return 1
    fi
    # Here and below: names are words without blanks; each is one argument.
    # shellcheck disable=SC2046,SC2086
    missing=$(missing_packages $(listed_packages "$@") | tr '\n' ' ')
    [ -n "$missing" ] || return 0
    echo "Missing packages: $missing"
    if [ "$(id -u)" -ne 0 ]; then
        echo "Installing them needs root: run this with sudo once." >&2
        return 1
    fi
    export DEBIAN_FRONTEND=noninteractive
    # shellcheck disable=SC2046,SC2086
    if ! { apt-get update -q && apt-get install -q -y --no-install-recommends \
        $(chosen_packages $missing); } </dev/null
    then
        echo "The packages could not be installed; see above." >&2
        return 1
    fi
}

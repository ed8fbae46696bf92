# SPDX-License-Identifier: MIT
# Sourced by demo and check: brings the Debian packages that the file debian-packages lists.

# Prints the packages of the list that are not installed.
missing_packages() {
    sed -e 's/#.*//' -e '/^[[:space:]]*$/d' debian-packages | while read -r package; do
        status=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) || status=absent
        [ "$status" = installed ] || printf '%s\n' "$package"
    done
}

# Installs what is missing; says why when it cannot. Returns non-zero then.
install_packages() {
    if ! command -v dpkg-query >/dev/null 2>&1; then
        echo "This is not a Debian system; debian-packages lists what is needed." >&2
        return 1
    fi
    missing=$(missing_packages | tr '\n' ' ')
    [ -n "$missing" ] || return 0
    echo "Missing packages: $missing"
    if [ "$(id -u)" -ne 0 ]; then
        echo "Installing them needs root: run this with sudo once." >&2
        return 1
    fi
    export DEBIAN_FRONTEND=noninteractive
    # The list is words without blanks; each is one argument.
    # shellcheck disable=SC2086
    if ! { apt-get update -q && apt-get install -q -y --no-install-recommends $missing; } </dev/null
    then
        echo "The packages could not be installed; see above." >&2
        return 1
    fi
}

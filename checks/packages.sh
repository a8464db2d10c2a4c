# Debian packages, for the scripts that need some. To be sourced.

# Prints those of the packages that are not installed, one a line. Machines without dpkg are not asked:
# what is missing there shows when it is used.
missing_packages() {
    command -v dpkg-query >/dev/null || return 0
    local package
    for package in "$@"; do
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || echo "$package"
    done
}

# Runs a command as the user who may install packages.
as_administrator() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        if ! sudo -n true 2>/dev/null && ! { : </dev/tty; } 2>/dev/null; then
            echo "sudo wants a password, and there is no terminal to type it at" >&2
            return 1
        fi
        sudo "$@"
    else
        echo "installing packages needs root or sudo" >&2
        return 1
    fi
}

# Installs those of the packages that are missing: install_packages LOG PACKAGE...
# Says on standard error what it installs, and why it could not; apt's own words go to the log.
install_packages() {
    local log=$1 missing
    shift
    mapfile -t missing < <(missing_packages "$@")
    [ ${#missing[@]} -gt 0 ] || return 0
    mkdir -p "$(dirname "$log")"
    echo "installing ${missing[*]}" >&2
    if ! {
        as_administrator apt-get update -qq &&
            as_administrator env DEBIAN_FRONTEND=noninteractive \
                apt-get install -qq -y --no-install-recommends -o DPkg::Lock::Timeout=300 "${missing[@]}"
    } </dev/null >"$log" 2>&1; then
        tail -n 20 "$log" >&2
        echo "could not install ${missing[*]}" >&2
        return 1
    fi
}

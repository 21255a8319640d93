# Installs Debian packages that are missing. Sourced by the scripts beside this folder.

build_packages="g++ cmake ninja-build qt6-base-dev libgl-dev libsqlite3-dev fonts-dejavu-core"
test_packages="libgtest-dev libgmock-dev mdbtools xvfb xauth poppler-utils mold"

# install_missing PACKAGE...: does nothing, and needs no rights, when all are there.
install_missing() {
    local missing=() package
    for package in "$@"; do
        if [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
            missing+=("$package")
        fi
    done
    [ ${#missing[@]} -gt 0 ] || return 0

    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "These packages are missing and there is no sudo to install them: ${missing[*]}" >&2
            return 1
        fi
        as_root=(sudo)
    fi
    echo "Installing: ${missing[*]}"
    "${as_root[@]}" apt-get update -q
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"
}

# Compiles through ccache where somebody has installed it; it is never needed.
if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi

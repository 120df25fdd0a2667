# For the scripts beside it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
version=$(sed -n 's/^project(KetraQT VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt)

fail() {
    echo "package: $*" >&2
    exit 1
}
has() { # ROOT PATTERN...
    local root=$1 pattern
    shift
    for pattern in "$@"; do compgen -G "$root/$pattern" >/dev/null || fail "no $pattern in $root"; done
}
no_paths_of_ours() { # ROOT
    ! grep -rlF "$PWD" "$1" || fail "the files above name a folder of this machine"
}

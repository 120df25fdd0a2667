#!/usr/bin/env bash
# windows.sh PACKAGES WORK: the zip, consumed with the mingw-w64 compiler and run under wine.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
packages=$1 work=$2
compiler=x86_64-w64-mingw32-g++-posix
mkdir -p "$work"

unzip -q "$packages/ketraqt-$version-windows-x86_64.zip" -d "$work"
root=$(echo "$work"/ketraqt-*)
has "$root" bin/ketraqt.{dll,exe} lib/libketraqt.dll.a include/ketra/qt/QTMovie.h lib/cmake/KetraQT/KetraQTConfig.cmake \
    share/doc/*/{README.md,copyright,third-party/libz-mingw-w64}
no_paths_of_ours "$root"
scripts/imports "$root"/bin/*
scripts/symbols "$root/bin/ketraqt.dll"
for file in "$root"/bin/*; do # what the properties of a file show is there, in UTF-16
    LC_ALL=C grep -qa "ProductVersion.*$version" < <(tr -d '\0' <"$file") || fail "$file does not tell its version"
done

export WINEPATH=$root/bin
answers_ok() { [ "$(scripts/wine "$@" | tr -d '\r')" = ok ] || fail "$* did not answer ok"; }
cmake -S tests/consume -B "$work/cmake" -G Ninja -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_CXX_COMPILER=$compiler \
    -DCMAKE_PREFIX_PATH="$root" -DCONSUME_EACH_HEADER=OFF >/dev/null
cmake --build "$work/cmake"
answers_ok "$work/cmake/consumer.exe"

read -a flags <<<"$(PKG_CONFIG_LIBDIR=$root/lib/pkgconfig pkg-config --cflags --libs ketra-qt)"
$compiler -std=c++17 -Wall -Wextra -Werror tests/consume/consumer.cpp -o "$work/consumer.exe" \
    -static -Wl,-Bdynamic "${flags[@]}" -Wl,-Bstatic
answers_ok "$work/consumer.exe"
scripts/wine "$root/bin/ketraqt.exe" --version

#!/usr/bin/env bash
# archive.sh PACKAGES WORK: the tar.gz, unpacked in a place that nobody foresaw.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
packages=$1 work=$2
mkdir -p "$work"

tar -xzf "$packages/ketraqt-$version-linux-$(uname -m).tar.gz" -C "$work"
mv "$work"/ketraqt-* "$work/a place"
root="$work/a place"
has "$root" bin/ketraqt "lib*/libketraqt.so.$version" include/ketra/qt/QTMovie.h share/doc/*/{README.md,copyright}
no_paths_of_ours "$root"
"$root/bin/ketraqt" --version
scripts/consume --installed "$root" "$work/consume"

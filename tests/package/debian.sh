#!/usr/bin/env bash
# debian.sh PACKAGES WORK: the Debian packages, unpacked over one another into an empty root.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
packages=$1 work=$2
major=${version%%.*}
root=$work/root
mkdir -p "$root"

# Warnings are faults, too; what is not is said in packaging/debian/*.lintian-overrides, each with its reason.
lintian --no-cfg --allow-root --fail-on error,warning "$packages"/*.deb
for name in libketraqt"$major" libketraqt-dev ketraqt; do
    deb=$(echo "$packages/${name}_$version"-*.deb)
    [ -z "$(dpkg-deb --fsys-tarfile "$deb" | tar -t | grep -v '/$' | (cd "$root" && xargs ls -d 2>/dev/null))" ] ||
        fail "$name has files of another package"
    dpkg-deb -x "$deb" "$root"
    echo "$name: $(dpkg-deb -f "$deb" Depends)"
done
depends() { dpkg-deb -f "$packages/$1_$version"-*.deb Depends; }
[[ $(depends "libketraqt$major") =~ libc6.*libstdc\+\+6.*zlib1g ]] || fail "the library depends on less than it uses"
[[ $(depends libketraqt-dev) == "libketraqt$major (= $version-"*")" ]] || fail "headers without the library of their version"
[[ $(depends ketraqt) == *"libketraqt$major (>= $version-"* ]] || fail "the tool does not ask for its library"

lib=usr/lib/$(dpkg-architecture -q DEB_HOST_MULTIARCH)
has "$root" "$lib/libketraqt.so.$version" "$lib/cmake/KetraQT/KetraQTConfig.cmake" usr/bin/ketraqt
no_paths_of_ours "$root"
LD_LIBRARY_PATH=$root/$lib "$root/usr/bin/ketraqt" --version
readelf -d "$root/usr/bin/ketraqt" | grep -E 'R(UN)?PATH' && fail "the tool has a search path"
for file in "$root/usr/bin/ketraqt" "$root/$lib/libketraqt.so.$version"; do
    guards=$(readelf -Wdls "$file")
    [[ $guards == *GNU_RELRO* && $guards == *BIND_NOW* && $guards == *__stack_chk_fail* && $guards == *_chk@* ]] ||
        fail "$file lacks the compiler's guards"
    [[ $(file "$file") == *", stripped" ]] || fail "$file is not stripped"
done
scripts/consume --installed "$root/usr" "$work/consume"

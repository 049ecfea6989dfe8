#!/usr/bin/env bash
# Installs the Debian packages in DIR into a root that holds only what they depend on, and uses them
# there.
# usage: check-debian.sh DIR
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
libraries=usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)
runtime=("$1"/libkelxststorage[0-9]*_*.deb)
development=("$1"/libkelxststorage-dev_*.deb)
tool=("$1"/kelst_*.deb)
packages=("${runtime[@]}" "${development[@]}" "${tool[@]}")

fail() { echo "check-debian: $*" >&2 && exit 1; }

# expect_files PACKAGE PATH...: the package holds files whose names begin so.
expect_files() {
  local listed path
  listed=$(dpkg-deb --contents "$1")
  for path in "${@:2}"; do
    [[ $listed == *" ./$path"* ]] || fail "$1 does not hold /$path"
  done
}
((${#packages[@]} == 3)) || fail "these are not three packages: ${packages[*]}"
expect_files "${runtime[0]}" $libraries/libKELX{Base,StStorage}.so.
expect_files "${development[0]}" $libraries/libKELX{Base,StStorage}.so \
  $libraries/{cmake/KELXStStorage/,pkgconfig/KELXBase.pc,pkgconfig/KELXStStorage.pc} \
  usr/include/KELXStStorage/KELXStStorage.h
expect_files "${tool[0]}" usr/bin/kelst usr/share/man/man1/kelst.1.gz \
  usr/share/bash-completion/completions/kelst

if ((EUID != 0)) || ! chroot / true 2>/dev/null; then
  echo "check-debian: only root can install into a root of its own, so that was left out"
  exit 0
fi
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
mkdir -p "$root"/usr/{bin,sbin,lib,lib64} "$root"/var/lib/dpkg/{info,updates,triggers}
for folder in bin sbin lib lib64; do ln -s usr/$folder "$root/$folder"; done

# names_in DEPENDENCIES: the packages in the value of a Depends field.
names_in() { tr ',' '\n' <<<"$1" | sed -E 's/^ *//; s/[ (:|].*//' | grep -v libkelx || true; }

# copy_files PACKAGE: puts the files of a package of this machine into the root.
copy_files() {
  dpkg-query --listfiles "$1" | while read -r path; do
    if [[ -f $path && $path != /usr/share/* ]]; then echo ".$path"; fi
  done | tar -c -C / -T - | tar -x -C "$root"
}

# take PACKAGE...: puts them and what they depend on into the root, as if they had been installed.
take() {
  local package
  for package in "$@"; do
    ! grep -qsx "Package: $package" "$root/var/lib/dpkg/status" || continue
    { dpkg-query --status "$package" && echo; } >>"$root/var/lib/dpkg/status"
    copy_files "$package"
    take $(names_in "$(dpkg-query -Wf '${Pre-Depends},${Depends}' "$package")")
  done
}
for package in "${packages[@]}"; do take $(names_in "$(dpkg-deb --field "$package" Depends)"); done
for package in dash libc-bin; do copy_files $package; done # every system has a shell and ldconfig

dpkg --root="$root" --install "${packages[@]}" >"$root/log" 2>&1 || fail "$(<"$root/log")"

# expect TEXT COMMAND...: what the command prints in the root holds this text.
expect() {
  local printed
  printed=$(env -i PATH="$PATH" chroot "$root" "${@:2}")
  [[ $printed == *$1* ]] || fail "'${*:2}' printed: $printed"
}
cp "$here"/../data/{metadata.doc,installer.msi} "$root"
expect 'WordDocument' /usr/bin/kelst ls /metadata.doc
expect 'code page 1252' /usr/bin/kelst props /installer.msi

export PKG_CONFIG_LIBDIR=$root/$libraries/pkgconfig
read -ra flags < <(pkg-config --cflags --libs KELXStStorage)
c++ -std=c++20 "$here/consumer/main.cpp" "${flags[@]}" -o "$root/consumer"
expect 'WordDocument' /consumer /metadata.doc

dpkg --root="$root" --purge kelst libkelxststorage-dev "$(dpkg-deb --field "${runtime[0]}" Package)" \
  >"$root/log" 2>&1 || fail "$(<"$root/log")"
left=$(find "$root/usr" -iname '*kel*')
[[ -z $left ]] || fail "what removing the packages leaves: $left"
echo "installed, used and removed: $(basename -a "${packages[@]}" | tr '\n' ' ')"

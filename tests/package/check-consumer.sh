#!/usr/bin/env bash
# Builds and runs another project, which uses the library in one of the three ways.
# usage: check-consumer.sh SOURCE_DIR BUILD_DIR find_package|pkg_config|add_subdirectory
# in the environment: CMAKE, GENERATOR, CXX, LIBDIR, VERSION
set -euo pipefail
shopt -s nullglob
source=$1 build=$2 way=$3
sample=$source/tests/data/metadata.doc
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/moved/prefix
cp "$source"/tests/package/consumer/* "$scratch"

fail() { echo "$*" >&2 && exit 1; }

# Installs and moves what was installed, in which no path of this machine may stand.
install_and_move() {
  "$CMAKE" --install "$build" --prefix "$scratch/prefix" >/dev/null
  mkdir "$scratch/moved"
  mv "$scratch/prefix" "$prefix"
  local paths
  paths=$(grep -rIF -e "$scratch" -e "$source" -e "$build" "$prefix" || true
    readelf -d "$prefix/$LIBDIR"/*.so "$prefix"/bin/* | grep 'R.*PATH' | grep -vF '[$ORIGIN' || true)
  [[ -z $paths ]] || fail "the installed tree cannot be moved: $paths"
}

# build_with_cmake ARGUMENT...
build_with_cmake() {
  "$CMAKE" -G "$GENERATOR" -S "$scratch" -B "$scratch/build" "$@" >/dev/null
  "$CMAKE" --build "$scratch/build" --parallel 2 >/dev/null
}

# expect_stream COMMAND...: the command names a stream that the sample is known to hold.
expect_stream() {
  local listed
  listed=$("$@")
  [[ $listed == *WordDocument* ]] || fail "no stream listed by: $*"
}

case $way in
find_package)
  install_and_move
  build_with_cmake -DCMAKE_PREFIX_PATH="$prefix" -DKELX_VERSION="$VERSION"
  if [[ -e $prefix/bin/kelst ]]; then # absent when the tools are not built
    expect_stream "$prefix/bin/kelst" ls "$sample"
  fi
  ;;
pkg_config)
  install_and_move
  export PKG_CONFIG_PATH=$prefix/$LIBDIR/pkgconfig
  pkg-config --exists --print-errors "KELXStStorage = $VERSION"
  mkdir "$scratch/build"
  read -ra flags < <(pkg-config --cflags --libs KELXStStorage)
  "$CXX" -std=c++20 -Wall -Wextra -Werror "$scratch/main.cpp" "${flags[@]}" \
    -Wl,-rpath,"$prefix/$LIBDIR" -o "$scratch/build/consumer"
  ;;
add_subdirectory)
  build_with_cmake -DKELX_SOURCE="$source"
  ;;
*) fail "there is no way named $way" ;;
esac
expect_stream "$scratch/build/consumer" "$sample"

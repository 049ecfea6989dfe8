#!/usr/bin/env bash
# Installs into a scratch prefix and uses what is there the way another project would.
# usage: check-install.sh CMAKE BUILD_DIR COMPILER LIBDIR
set -euo pipefail
cmake=$1 build=$2 compiler=$3 libdir=$4
here=$(cd "$(dirname "$0")" && pwd)
scratch=$build/consumer
prefix=$scratch/prefix
sample=$here/../data/metadata.doc

# expect_stream COMMAND...: the command names the stream that the sample is known to hold.
expect_stream() {
  local listed
  listed=$("$@")
  [[ $listed == *WordDocument* ]] || { echo "no stream listed by: $*" >&2 && exit 1; }
}

rm -rf "$scratch"
"$cmake" --install "$build" --prefix "$prefix" >/dev/null

"$compiler" -std=c++20 -Wall -Wextra -Werror -I"$prefix/include/KELXStStorage" "$here/main.cpp" \
  -L"$prefix/$libdir" -lKELXStStorage -lKELXBase -Wl,-rpath,"$prefix/$libdir" -o "$scratch/plain"
expect_stream "$scratch/plain" "$sample"

"$cmake" -S "$here" -B "$scratch/package" -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_COMPILER="$compiler" >/dev/null
"$cmake" --build "$scratch/package" >/dev/null
expect_stream "$scratch/package/consumer" "$sample"

if [[ -e $prefix/bin/kelst ]]; then # absent when the tools are not built
  expect_stream "$prefix/bin/kelst" ls "$sample"
fi

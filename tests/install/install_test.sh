#!/usr/bin/env bash
# Installs into an empty folder, then builds and runs a small program against what is there, once by
# CMake's package configuration and once by pkg-config, beside the installed command line, of which
# the manual page and the completion must be where man and bash look for them.
#
# usage: install_test.sh BUILD_FOLDER SOURCE_FOLDER
set -euo pipefail
build=$1 source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/prefix" >/dev/null
export PATH=$work/prefix/bin:$PATH
cmp "$work/prefix/share/man/man1/ambrelio.1" "$source/docs/ambrelio.1"
cmp "$work/prefix/share/bash-completion/completions/ambrelio" "$source/completions/ambrelio.bash"

mkdir "$work/mill"
cp "$source"/examples/campana/*.INI "$source"/examples/campana/*.ini "$work/mill"
ambrelio create --app "$work/mill" --masters "$source/examples/campana"
echo '{"let":"Deposito(1).Nombre","value":"Los Llanos"}' | ambrelio journal --app "$work/mill" - >/dev/null

cached() { sed -n "s/^$1:[A-Z]*=//p" "$build/CMakeCache.txt"; }
compiler=$(cached CMAKE_CXX_COMPILER)
flags=()
[[ $(cached AMBRELIO_SANITIZE) == ON ]] && flags=(-fsanitize=address,undefined)

cmake -G "$(cached CMAKE_GENERATOR)" -S "$source/tests/install" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/prefix" \
  -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="${flags[*]:-}" >/dev/null
cmake --build "$work/build" >/dev/null
[[ $("$work/build/program" "$work/mill") == "Los Llanos" ]]

pc=$(dirname "$(find "$work/prefix" -name ambrelio.pc)")
# shellcheck disable=SC2046 # the flags are words
PKG_CONFIG_PATH=$pc "$compiler" -std=c++20 "${flags[@]}" "$source/tests/install/program.cpp" -o "$work/program" \
  $(PKG_CONFIG_PATH=$pc pkg-config --cflags --libs ambrelio)
[[ $("$work/program" "$work/mill") == "Los Llanos" ]]
echo "installed, built and ran"

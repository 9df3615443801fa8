# What the tests of scripts share. To be sourced after BUILD, the folder of the build, and BITS, 32 or
# 64, are set. The library and the stand-in for DAO are registered in a Windows of these tests' own,
# where no other test looks for DAO in vain.
source_folder=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

wine() { "$source_folder/scripts/wine" "$BITS" "$BUILD/_wine_scripts" "$@" </dev/null; }
ambrelio() { wine "$BUILD/bin/ambrelio.exe" "$@"; }
script_host() { wine "$BUILD/tests/windows/script_host/script_host.exe" "$@"; }

# The path as a program of Windows sees it.
windows_path() { echo "Z:${1//\//\\}"; }

# make_mill FOLDER own|dao [CREATE OPTION...]: a mill with the example season's settings, in a file of
# the library's own engine or in one that the stand-in for DAO takes for Jet's.
make_mill() {
  local folder=$1 engine=$2
  shift 2
  mkdir -p "$folder"
  cp "$source_folder"/examples/campana/{CLIEN.INI,Vardex.ini} "$folder"
  ambrelio create --app "$(windows_path "$folder")" "$@" >/dev/null
  [[ $engine == own ]] || give_to_stand_in "$folder/oliva.mdb"
}

# give_to_stand_in FILE: puts the beginning of a file of Jet in front of what the stand-in reads.
give_to_stand_in() {
  mv "$1" "$1.stand-in"
  { printf '\0\1\0\0Standard Jet DB\0\1' && head -c 4075 /dev/zero; } >"$1"
}

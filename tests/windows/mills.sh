# What the tests of scripts share. To be sourced after BUILD, the folder of the build, and BITS, 32 or
# 64, are set. The library is registered in two Windows of these tests' own, where no other test looks
# for it in vain; in one of them, so is the stand-in for DAO.
source_folder=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

windows=_wine_scripts # or _wine_without_dao
wine() { "$source_folder/scripts/wine" "$BITS" "$BUILD/$windows" "$@" </dev/null; }
ambrelio() { wine "$BUILD/bin/ambrelio.exe" "$@"; }
script_host() { wine "$BUILD/tests/windows/script_host/script_host.exe" "$@"; }

# The path as a program of Windows sees it.
windows_path() { echo "Z:${1//\//\\}"; }

# make_mill FOLDER own|jet|dao [CREATE OPTION...]: a mill with the example season's settings. Its database
# is a file of the library's own, or one of Jet, which the library opens itself (jet: from here on there
# is no DAO) or through the stand-in for DAO.
make_mill() {
  local folder=$1 engine=$2
  shift 2
  [[ $engine != jet ]] || windows=_wine_without_dao
  mkdir -p "$folder"
  cp "$source_folder"/examples/campana/{CLIEN.INI,Vardex.ini} "$folder"
  ambrelio create --app "$(windows_path "$folder")" "$@" >/dev/null
  [[ $engine == own ]] || return 0
  ambrelio convert "$(windows_path "$folder/oliva.mdb")" "$(windows_path "$folder/oliva.own")"
  mv "$folder/oliva.own" "$folder/oliva.mdb"
}

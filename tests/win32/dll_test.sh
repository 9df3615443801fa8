#!/usr/bin/env bash
# What the DLL shows and needs: five functions by their plain names, and nothing but Windows' own DLLs.
#
# usage: dll_test.sh OBJDUMP DLL
set -euo pipefail
headers=$("$1" -p "$2")
exports=$(sed -n 's/^\t\[ *[0-9]*\] \([A-Za-z@_0-9]*\)$/\1/p' <<<"$headers" | sort | paste -sd ' ')
imports=$(sed -n 's/.*DLL Name: //p' <<<"$headers" | tr a-z A-Z | sort | paste -sd ' ')
failed=0
expect() { [[ $2 == "$3" ]] || { echo "$1: expected '$3', found '$2'" >&2; failed=1; }; }
expect exports "$exports" "DllCanUnloadNow DllGetClassObject DllInstall DllRegisterServer DllUnregisterServer"
for import in $imports; do
  case $import in
    ADVAPI32.DLL | KERNEL32.DLL | MSVCRT.DLL | OLE32.DLL | OLEAUT32.DLL | SHELL32.DLL | USER32.DLL | WS2_32.DLL) ;;
    *) echo "needs $import" >&2; failed=1 ;;
  esac
done
exit "$failed"

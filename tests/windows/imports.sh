#!/usr/bin/env bash
# imports.sh OBJDUMP FILE...: DLLs and programs want nothing that Windows lacks, but the library's own DLLs.
set -euo pipefail
objdump=$1
shift
every_windows="advapi32 gdi32 kernel32 msvcrt ole32 shell32 user32"
failed=0
for file in "$@"; do
    names=$("$objdump" -p "$file" | sed -n 's/^\tDLL Name: //p' | tr 'A-Z\n' 'a-z ')
    [ -n "$names" ] || { echo "$file: no import table"; failed=1; }
    for name in $names; do
        case " $every_windows libninefold libninefold-kit " in
        *" ${name%.dll} "*) ;;
        *) echo "$file wants $name"; failed=1 ;;
        esac
    done
done
exit $failed

#!/usr/bin/env bash
# The file types of packaging/velkor-mime.xml as the desktop sees them: the definitions compiled into a
# private shared-mime-info database, put before the system's, then sample files asked about through GIO
# (which reads glob and magic rules as file managers do).
# Usage: mime_types_test.sh MIME_XML
set -euo pipefail
xml=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/data/mime/packages" "$work/files"
cp "$xml" "$work/data/mime/packages/velkor.xml"
update-mime-database "$work/data/mime" 2>/dev/null
export XDG_DATA_HOME=$work/data XDG_DATA_DIRS=/usr/share

cd "$work/files"
printf 'FORM\0\0\0\4MISS' >a.mis
printf 'FORM\0\0\0\4MISS' >b.IFF
printf 'FORM\0\0\0\4SECT' >c.sec
printf 'FORM\0\0\0\4SERS' >d.srs
printf 'FORM\0\0\0\4DATA' >no_extension
printf 'mission m;\r\n' >mission.pas
printf 'mission m;\r\n' >mission_unit
printf 'series s;\n' >series_unit
printf 'sector s;\n' >sector_unit
printf 'project p;\n' >project_unit
printf 'unit u;\ninterface\n' >pascal_unit.pas
printf 'unit u;\ninterface\n' >text_file

failures=0
while read -r file want; do
    got=$(gio info -a standard::content-type "$file" | sed -n 's/^ *standard::content-type: //p')
    if [ "$got" = "$want" ]; then echo "ok   $file: $want"; else
        echo "FAIL: $file is $got, not $want"
        failures=$((failures + 1))
    fi
done <<'CASES'
a.mis application/x-velkor-mission
b.IFF application/x-velkor-iff
c.sec application/x-velkor-sector
d.srs application/x-velkor-series
no_extension application/x-velkor-iff
mission.pas text/x-pascal
mission_unit text/x-velkor-unit
series_unit text/x-velkor-unit
sector_unit text/x-velkor-unit
project_unit text/x-velkor-unit
pascal_unit.pas text/x-pascal
text_file text/plain
CASES
((failures == 0))

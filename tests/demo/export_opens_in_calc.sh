#!/bin/sh
# Exports the demo clinic's patient list and checks that LibreOffice Calc
# reads the file: the header row with its Czech texts and one row a patient.
set -eu
demo="$1"
dir="$2"
rm -rf "$dir"
mkdir -p "$dir"
"$demo" --db "$dir/clinic.sqlite" --export "$dir/pacienti.xls"
if ! command -v libreoffice >/dev/null 2>&1; then
    echo "libreoffice is not installed: the file was written but not opened"
    exit 77
fi
cd "$dir"
timeout 180 libreoffice -env:UserInstallation="file://$dir/profile" --headless \
    --convert-to 'csv:Text - txt - csv (StarCalc):44,34,76' pacienti.xls >/dev/null 2>&1
head -n 1 pacienti.csv | grep -q '^Příjmení,Jméno,Rodné číslo,Narozen,Pojišťovna'
rows=$(wc -l < pacienti.csv)
test "$rows" -eq 241
echo "LibreOffice Calc read $rows rows"

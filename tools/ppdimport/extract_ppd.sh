#!/bin/sh
# extract_ppd.sh ARCHIVE PPD OUTPUT
# Takes one PPD file out of an archive of CUPS' driver folder, which is a program that prints its members.
set -eu
archive=$1 ppd=$2 output=$3
trap 'rm -f -- "$output.part"' EXIT
"$archive" cat "$(basename -- "$archive"):$ppd" >"$output.part"
if ! head -c 10 -- "$output.part" | grep -q '^\*PPD-Adobe'; then
  echo "extract_ppd.sh: $archive has no $ppd" >&2
  exit 1
fi
mv -- "$output.part" "$output"

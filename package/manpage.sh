#!/bin/sh
# Writes a gzipped man page for a program from its own --help text, so the manual and
# the help never disagree. For krldv each command's --help becomes a section of its own.
# usage: manpage.sh PROGRAM NAME "ONE-LINE SUMMARY" VERSION OUT.gz
set -eu
program=$1 name=$2 summary=$3 version=$4 out=$5
upper=$(echo "$name" | tr '[:lower:]' '[:upper:]')
# Backslashes and leading dots or quotes would be read as roff requests.
roff() { sed -e 's/\\/\\e/g' -e "s/^\\([.']\\)/\\\\\\&\\1/" -e 's/-/\\-/g'; }

{
    printf '.TH %s 1 "" "%s %s" "User Commands"\n' "$upper" "$name" "$version"
    printf '.SH NAME\n%s \\- %s\n' "$name" "$summary"
    printf '.SH DESCRIPTION\n.nf\n'
    "$program" --help 2>&1 | roff
    printf '.fi\n'
    if [ "$name" = krldv ]; then
        for command in $("$program" --help | awk '/^  [a-z]/ { print $1 }'); do
            printf '.SH "KRLDV %s"\n.nf\n' "$(echo "$command" | tr '[:lower:]' '[:upper:]')"
            "$program" "$command" --help 2>&1 | roff
            printf '.fi\n'
        done
    fi
    printf '.SH SEE ALSO\n'
    if [ "$name" = krldv ]; then printf '.BR korel5 (1)\n'; else printf '.BR krldv (1)\n'; fi
} | gzip -9n >"$out"

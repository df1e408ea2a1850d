#!/usr/bin/env bash
# The layers point downward: formats, then the Qt-free core, then the Qt module, then the
# application and the command line. Fails on an include that points up, on Qt in the core or
# the formats, and on a cycle between the areas of the core.
set -u
SRC="$1"
fail=0

# Which layer (or core area) a quoted header lives in; empty for headers of no layer.
declare -A home
for dir in krlfileio gui korel5 cli; do
  while IFS= read -r h; do home[$(basename "$h")]=$dir; done < <(find "$SRC/$dir" -name '*.h')
done
for area in "$SRC"/core/*/; do
  a=$(basename "$area")
  while IFS= read -r h; do home[$(basename "$h")]=core/$a; done < <(find "$area" -name '*.h')
done

# Layers each layer may include, itself included.
allowed() {
  case "$1" in
    krlfileio) echo "krlfileio" ;;
    core) echo "krlfileio core" ;;
    gui) echo "krlfileio core gui" ;;
    korel5) echo "krlfileio core gui korel5" ;;
    cli) echo "krlfileio core cli" ;;
  esac
}

edges=$(mktemp); trap 'rm -f "$edges"' EXIT
for layer in krlfileio core gui korel5 cli; do
  while IFS= read -r f; do
    rel=${f#"$SRC"/}
    area=$(echo "$rel" | cut -d/ -f2)
    while IFS= read -r inc; do
      name=$(basename "$inc")
      target=${home[$name]:-}
      [ -n "$target" ] || continue
      tlayer=${target%%/*}
      if ! echo " $(allowed "$layer") " | grep -q " $tlayer "; then
        echo "FAIL $rel includes $inc from $target, a layer above"; fail=1
      fi
      # Headers of the core are named by their area, "doc/KCDataDoc.h", so the area shows.
      if [ "$tlayer" = core ] && [ "$inc" = "$name" ]; then
        echo "FAIL $rel includes $inc without its area (${target#core/}/$name)"; fail=1
      fi
      if [ "$layer" = core ] && [ "$tlayer" = core ]; then
        tarea=${target#core/}
        [ "$tarea" != "$area" ] && echo "$area $tarea" >> "$edges"
      fi
    done < <(sed -n 's/^#include "\(.*\)".*/\1/p' "$f")
    if [ "$layer" = krlfileio ] || [ "$layer" = core ]; then
      if grep -qE '^#include <Q[A-Za-z]*>' "$f"; then echo "FAIL $rel uses Qt"; fail=1; fi
    fi
  done < <(find "$SRC/$layer" -name '*.h' -o -name '*.cpp' | grep "^$SRC/$layer/")
done

if ! sort -u "$edges" | tsort >/dev/null 2>&1; then
  echo "FAIL the areas of the core include each other in a cycle:"
  sort -u "$edges" | tsort 2>&1 >/dev/null | sed 's/^/  /'
  fail=1
fi
exit $fail

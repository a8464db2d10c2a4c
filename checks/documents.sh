# holds: the public headers and docs/ become pages without a warning, and links between documents lead somewhere
# packages: doxygen
# minutes: 5

. checks/common.sh

rm -rf build/doxygen
mkdir -p build
doxygen docs/Doxyfile
[ -s build/doxygen/html/annotated.html ] || fail "no classes are told of"

# Links of the documents, but for those to the web.
broken=0
while IFS=: read -r document link; do
    target=$(dirname "$document")/${link%%#*}
    [ -e "$target" ] || { echo "$document: $link leads nowhere"; broken=1; }
done < <(grep -oHP '\]\(\K(?!https?:|#)[^)]+' README.md docs/*.md platform/README.md)
[ $broken -eq 0 ]

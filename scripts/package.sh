#!/usr/bin/env bash
# The Debian package out/velkor_<version>_amd64.deb, made by CPack from the build in build/ (installed to
# /usr, stripped, Depends computed by dpkg-shlibdeps) and checked by lintian, which must report no error.
# --test then installs it on this machine with dpkg (root only), tries it and removes it again
# (tests/packaging/install_test.sh).
set -euo pipefail
cd "$(dirname "$0")/.."
test=0
for arg in "$@"; do
    case $arg in
        --test) test=1 ;;
        *) echo "usage: $0 [--test]" >&2; exit 2 ;;
    esac
done
./scripts/setup.sh --package

rm -f out/velkor_*.deb
(cd build && cpack -G DEB)
deb=$(ls out/velkor_*_amd64.deb)
echo
echo "== lintian $deb"
lintian --fail-on error --display-level '>=warning' "$deb"
echo "lintian reports no error"
dpkg-deb --field "$deb" Package Version Architecture Depends

if ((test)); then
    ./tests/packaging/install_test.sh "$deb"
fi

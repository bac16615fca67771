#!/usr/bin/env bash
# Makes the Debian package, unpacks it and runs the program from there.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
source_dir=$1 build_dir=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
cpack --config "$build_dir/CPackConfig.cmake" -G DEB -B "$folder" > log 2>&1 || { cat log; exit 1; }
dpkg-deb --extract rovescio_*.deb root

for path in usr/bin/rovescio usr/lib/rovescio/rovescio \
    usr/lib/rovescio/NotationEngine.bundle/Contents/Info.plist \
    usr/lib/rovescio/NotationEngine.bundle/Contents/Helpers/load-code \
    usr/lib/rovescio/Rovescio.bundle/Contents/Info.plist \
    usr/lib/rovescio/Rovescio.bundle/Contents/Frameworks/libRovescioPlatform.so.1 \
    usr/lib/rovescio/Rovescio.bundle/Contents/Resources/en.lproj/Localizable.strings \
    usr/share/man/man1/rovescio.1.gz usr/share/doc/rovescio/copyright usr/share/doc/rovescio/changelog.gz; do
    [[ -e root/$path ]] || { echo "$path is not in the package"; exit 1; }
done
depends=$(dpkg-deb --field rovescio_*.deb Depends)
for library in libc6 libstdc++6 libzip4 libplist3 libicu72; do
    [[ $depends == *$library* ]] || { echo "$library is not a dependency: $depends"; exit 1; }
done
# The build tree must not be needed: nothing in the package may name it.
if grep -rlF "$build_dir" root; then
    echo "These files name the build tree."
    exit 1
fi
bash "$here/binaries.sh" root/usr/lib/rovescio
root/usr/bin/rovescio validate root/usr/lib/rovescio/Rovescio.bundle > report || { cat report; exit 1; }
root/usr/bin/rovescio "$source_dir/examples/greensleeves.musicxml" --transpose "up minor third" \
    --output new.mxl --quiet
root/usr/bin/rovescio new.mxl --transpose "down minor third" --output back.musicxml --quiet
[[ -s back.musicxml ]]

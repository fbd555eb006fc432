#!/usr/bin/env bash
# Builds the Debian package, installs it into this system and checks it as a user would meet it:
# every program's --version, a whole job on samples/ run by the installed vocabrix-cli with the
# installed interface tools, the desktop entry, the metainfo, the document type, the man pages,
# the application started once from /usr/bin with a document. Then removes the package and checks
# that nothing of it is left in /usr. Needs root or sudo; leaves an installed vocabrix alone.
# Set VOCABRIX_CHECK_PACKAGE=0 to leave this out of scripts/test.sh.
set -euo pipefail
cd "$(dirname "$0")/.."
if [ "${VOCABRIX_CHECK_PACKAGE:-1}" = "0" ]; then echo "check-package: skipped (VOCABRIX_CHECK_PACKAGE=0)"; exit 0; fi

SUDO=""
if [ "$(id -u)" -ne 0 ]; then
  if command -v sudo >/dev/null 2>&1; then SUDO="sudo"; else
    echo "check-package: needs root or sudo to install the package" >&2; exit 1
  fi
fi
if dpkg-query -W -f='${Status}' vocabrix 2>/dev/null | grep -q "install ok installed"; then
  echo "check-package: a vocabrix package is installed here already; it is left alone and the check skipped"
  exit 0
fi

bash scripts/package.sh
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' build/CMakeCache.txt)
id=org.vocabrix.Vocabrix
types=$(sed -n 's/.*<mime-type type="\([^"]*\)".*/\1/p' resources/vocabrix-mime.xml)

work=$(mktemp -d)
installed=0
cleanup() {
  if [ "$installed" = 1 ]; then $SUDO env DEBIAN_FRONTEND=noninteractive apt-get purge -y -qq vocabrix >/dev/null || true; fi
  rm -rf "$work"
}
trap cleanup EXIT
fail() { echo "check-package: FAILED: $*" >&2; exit 1; }

# MIME types another package defines already must not count as left behind.
for t in $types; do if [ -e "/usr/share/mime/$t.xml" ]; then echo "$t"; fi; done > "$work/types-before"

echo "check-package: installing build/vocabrix_${version}_*.deb"
$SUDO env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq ./build/vocabrix_"${version}"_*.deb >/dev/null
installed=1
dpkg-query -L vocabrix > "$work/files"

# The programs, from /usr/bin, in a home of their own so no user file is read or written.
mkdir -p "$work/home"
run() { env -u VOCABRIX_TOOLS_DIR -u VOCABRIX_IBTOOL -u VOCABRIX_NIBTOOL HOME="$work/home" \
        XDG_CONFIG_HOME="$work/home/.config" XDG_DATA_HOME="$work/home/.local/share" "$@"; }
for p in vocabrix-cli vocabrix-ibtool vocabrix-nibtool; do
  got=$(run "/usr/bin/$p" --version)
  [ "$got" = "$p $version" ] || fail "$p --version printed \"$got\", expected \"$p $version\""
done
got=$(run env QT_QPA_PLATFORM=offscreen /usr/bin/vocabrix --version 2>/dev/null)
[ "$got" = "Vocabrix $version" ] || fail "vocabrix --version printed \"$got\""

run /usr/bin/vocabrix-cli job --from en --to fr --add samples/Notekeeper.app --previous samples/Notekeeper-1.0.app \
    --export-to "$work/out" --save "$work/Notekeeper.vocabrix" > "$work/job.json" || fail "vocabrix-cli job: $(cat "$work/job.json")"
for f in Preferences.xib Localizable.strings InfoPlist.strings Templates.plist; do
  [ -s "$work/out/$f" ] || fail "the job wrote no $f"
done
grep -q '"failed":\[\]' "$work/job.json" || fail "the job reports failed files: $(tail -1 "$work/job.json")"

# Desktop integration.
desktop-file-validate "/usr/share/applications/$id.desktop" || fail "desktop-file-validate"
appstreamcli validate --no-net "/usr/share/metainfo/$id.metainfo.xml" > "$work/appstream" || { cat "$work/appstream"; fail "appstreamcli validate"; }
grep -q "<release version=\"$version\"" "/usr/share/metainfo/$id.metainfo.xml" || fail "the metainfo has no release $version"
[ -e /usr/share/mime/application/x-vocabrix-document.xml ] || fail "the MIME database does not know the document type"
grep -q "^application/x-vocabrix-document=.*$id.desktop" /usr/share/applications/mimeinfo.cache \
  || fail "the desktop database does not open documents with $id.desktop"
for p in vocabrix vocabrix-cli vocabrix-ibtool vocabrix-nibtool; do
  zcat "/usr/share/man/man1/$p.1.gz" | grep -q "^\.TH .*\"Vocabrix $version\"" || fail "man page of $p"
  [ -x "/usr/bin/$p" ] || fail "/usr/bin/$p missing"
done
for size in 16x16 32x32 48x48 256x256 scalable; do
  ls /usr/share/icons/hicolor/$size/apps/$id.* >/dev/null || fail "no $size icon"
done

# The application, once, offscreen, with the document the job saved; it quits once it has shown it.
run env QT_QPA_PLATFORM=offscreen timeout 60 /usr/bin/vocabrix --screenshot "$work/window.png" "$work/Notekeeper.vocabrix" \
  || fail "vocabrix did not start and quit with the document (status $?)"
[ -s "$work/window.png" ] || fail "vocabrix showed no window"

echo "check-package: removing the package"
$SUDO env DEBIAN_FRONTEND=noninteractive apt-get purge -y -qq vocabrix >/dev/null
installed=0
while read -r f; do
  if [ -d "$f" ]; then continue; fi  # shared folders such as /usr/bin stay
  if [ -e "$f" ] || [ -L "$f" ]; then fail "$f is left after removal"; fi
done < "$work/files"
left=$(find /usr -iname '*vocabrix*' 2>/dev/null | head)
[ -z "$left" ] || fail "left in /usr after removal: $left"
for t in $types; do
  if grep -qx "$t" "$work/types-before"; then continue; fi
  if [ -e "/usr/share/mime/$t.xml" ]; then fail "the MIME database still knows $t"; fi
done
if grep -q vocabrix /usr/share/applications/mimeinfo.cache 2>/dev/null; then fail "mimeinfo.cache still names Vocabrix"; fi
echo "check-package: vocabrix $version installed, checked and removed cleanly"

#!/usr/bin/env bash
# Builds the Debian package of a build (cpack) and checks it as an installer
# would meet it: the capture service's unit (systemd-analyze verify, and an
# exposure of 3.0 or less by systemd-analyze security), its configuration as
# a conffile, the maintainer scripts that make its user, a manual page for
# the program and each of its commands, every documentation page with the
# README's links resolving where it is installed, the copyright file, and
# libpq5 suggested.
# Usage: scripts/check_package.sh [BUILD_DIR]
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build}"
build=$(cd "$build" && pwd)

work=$(mktemp -d /tmp/velqua-package-XXXXXX)
trap 'rm -rf "$work"' EXIT
fail() { echo "package: $*" >&2; exit 1; }

cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work" >"$work/cpack.log" 2>&1 ||
  { cat "$work/cpack.log" >&2; fail "cpack failed"; }
deb=$(ls "$work"/velqua_*.deb)
root="$work/root"
dpkg-deb -x "$deb" "$root"
dpkg-deb -e "$deb" "$work/control"

# The service: unit, configuration (a conffile), maintainer scripts.
unit="$root/usr/lib/systemd/system/velqua-capture.service"
[ -f "$unit" ] || fail "no unit"
[ -f "$root/etc/velqua/capture.toml" ] || fail "no /etc/velqua/capture.toml"
[ "$(cat "$work/control/conffiles")" = /etc/velqua/capture.toml ] ||
  fail "conffiles: $(cat "$work/control/conffiles")"
grep -q "useradd --system" "$work/control/postinst" || fail "postinst makes no user"
for script in postinst prerm postrm; do
  sh -n "$work/control/$script" || fail "$script: syntax"
done
grep -q "^ExecStart=/usr/bin/velqua capture --config /etc/velqua/capture.toml$" "$unit" ||
  fail "the unit runs something else"
[ -x "$root/usr/bin/velqua" ] || fail "no /usr/bin/velqua"
# The configuration it ships is one the service takes.
sed 's|/usr/share/velqua/|'"$root"'/usr/share/velqua/|' "$root/etc/velqua/capture.toml" \
  >"$work/capture.toml"
"$build/tools/velqua/velqua" capture status --config "$work/capture.toml" >/dev/null || [ $? -eq 2 ] ||
  fail "the shipped configuration is refused"

# Every program the unit runs comes from the package, an essential package
# or one it depends on (a minimal system has no /bin/kill without procps).
depends=$(dpkg-deb -f "$deb" Depends)
for program in $(sed -n 's/^Exec[A-Za-z]*=[-@+!:]*\(\/[^ ]*\).*/\1/p' "$unit"); do
  [ -e "$root$program" ] && continue
  owner=$(dpkg -S "$program" 2>/dev/null | head -1 | cut -d: -f1) || fail "$program: from no package"
  [ "$(dpkg-query -W -f='${Essential}' "$owner")" = yes ] && continue
  case ", $depends," in *", $owner"[\ ,]*) ;; *) fail "$program comes from $owner, not a dependency" ;; esac
done

if command -v systemd-analyze >/dev/null; then
  # ExecReload's /bin/kill comes from the system, the rest from the package.
  sed "s|^ExecStart=/usr/bin/velqua|ExecStart=$root/usr/bin/velqua|" "$unit" \
    >"$work/velqua-capture.service"
  systemd-analyze verify --man=no "$work/velqua-capture.service" 2>"$work/verify.log" ||
    { cat "$work/verify.log" >&2; fail "systemd-analyze verify"; }
  if grep -v "Cannot add dependency job\|velqua user\|Failed to resolve user" "$work/verify.log" |
      grep -q .; then
    cat "$work/verify.log" >&2
    fail "systemd-analyze verify warns"
  fi
  systemd-analyze security --offline=true --threshold=30 "$work/velqua-capture.service" \
    >"$work/security.log" 2>&1 || { tail -5 "$work/security.log" >&2; fail "exposure over 3.0"; }
  exposure=$(grep -o "Overall exposure level for velqua-capture.service: [0-9.]*" "$work/security.log")
else
  exposure="(systemd-analyze not installed: unit not verified)"
fi

# Manual pages: the program's and one per command its --help lists.
man="$root/usr/share/man/man1"
[ -f "$man/velqua.1.gz" ] || fail "no velqua(1)"
commands=$("$build/tools/velqua/velqua" --help | sed -n '/^\(SUBCOMMANDS\|Subcommands\):/,$p' |
  sed -n 's/^  \([a-z][a-z0-9-]*\) .*/\1/p')
[ -n "$commands" ] || fail "no commands in velqua --help"
for c in $commands; do
  page="$man/velqua-$c.1.gz"
  [ -f "$page" ] || fail "no manual page velqua-$c(1)"
  zcat "$page" | grep -q "^\.TH VELQUA-$(echo "$c" | tr a-z A-Z) " || fail "velqua-$c(1): title"
  zcat "$page" | grep -q "^\.SH DESCRIPTION" || fail "velqua-$c(1): no description"
done

# Documentation: every page of doc/, and the README's links resolve.
docs="$root/usr/share/doc/velqua"
for page in $(git ls-files doc); do
  [ -f "$docs/$page" ] || fail "not installed: $page"
done
for link in $(grep -o '](\([^)#]*\))' README.md | sed 's/^](\(.*\))$/\1/' | grep -v '^[a-z]*://'); do
  [ -e "$docs/$link" ] || fail "README link broken where installed: $link"
done
grep -q "^Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/" \
  "$docs/copyright" || fail "no Debian copyright file"

suggests=$(dpkg-deb -f "$deb" Suggests)
case "$suggests" in *libpq5*) ;; *) fail "libpq5 not suggested: $suggests" ;; esac

echo "package: $(basename "$deb"): service, conffile, $(echo "$commands" | wc -w) command pages," \
  "$(git ls-files doc | wc -l) doc pages, copyright; $exposure"

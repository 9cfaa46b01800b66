#!/usr/bin/env bash
# Installs the Debian package into a Debian 12 root (a debootstrap'd copy:
# it is changed) and checks the capture service as an administrator meets
# it: apt installs it with its dependencies, the user velqua and its state
# folder exist, the configuration is a conffile readable by root and velqua
# only; the service's command line, run by hand as velqua against an
# emulated switch, captures into a store only velqua can read, answers
# `capture status` (0, then 1 when the switch goes away, 2 once stopped) and
# serves its metrics; a configuration mistake is exit status 78; the unit
# passes systemd-analyze verify and security (3.0 or less) when the root has
# systemd; an upgrade keeps an edited configuration; a purge keeps the calls.
# Needs root. Usage: scripts/check_package_root.sh ROOT DEB [BUILD_DIR]
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(cd "$1" && pwd)
deb="$2"
build="${3:-build}"
fail() { echo "package root: $*" >&2; exit 1; }
in_root() { chroot "$root" "$@"; }

cp /etc/resolv.conf "$root/etc/resolv.conf"
cp "$deb" "$root/tmp/velqua.deb"
in_root apt-get update -qq
in_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq /tmp/velqua.deb >/dev/null

in_root getent passwd velqua | grep -q ":/var/lib/velqua:/usr/sbin/nologin$" || fail "no user velqua"
[ "$(in_root stat -c '%U:%G %a' /var/lib/velqua)" = "velqua:velqua 750" ] || fail "state folder"
[ "$(in_root stat -c '%U:%G %a' /etc/velqua/capture.toml)" = "root:velqua 640" ] ||
  fail "configuration mode"
in_root dpkg-query -W -f='${Conffiles}' velqua | grep -q "/etc/velqua/capture.toml" ||
  fail "not a conffile"

# The service's command line by hand, as its user, against a switch on this
# host's loopback (a chroot shares the network).
port=23017
metrics=9465
sed -i "s/^host = .*/host = \"127.0.0.1\"/; s/^port = .*/port = $port/;
        s/^# metrics = .*/metrics = \"127.0.0.1:$metrics\"/" "$root/etc/velqua/capture.toml"
"$build/tools/switch-emulator/velqua-emulator" panasonic --port $port \
  --records examples/kx-tda/records.txt --rate 20 --count 100000 >/dev/null 2>&1 &
emulator=$!
in_root runuser -u velqua -- velqua capture --config /etc/velqua/capture.toml 2>/dev/null &
service=$!
trap 'kill $emulator 2>/dev/null || true; pkill -TERM -P $service 2>/dev/null || true' EXIT
status() { in_root velqua capture status --config /etc/velqua/capture.toml >/dev/null; }
wait_status() {
  for _ in $(seq 100); do
    rc=0; status || rc=$?
    [ $rc -eq "$1" ] && return 0
    sleep 0.2
  done
  fail "capture status never $1 (last $rc)"
}
wait_status 0
python3 - "$metrics" <<'PY' || fail "no metrics"
import sys, time, urllib.request
for _ in range(50):
    body = urllib.request.urlopen(f"http://127.0.0.1:{sys.argv[1]}/metrics").read().decode()
    if any(l.startswith("velqua_capture_records_total{") and float(l.split()[-1]) > 0
           for l in body.splitlines()):
        sys.exit(0)
    time.sleep(0.2)
sys.exit(1)
PY
[ "$(in_root stat -c '%U:%G %a' /var/lib/velqua/calls.db)" = "velqua:velqua 640" ] || fail "store mode"
kill $emulator
wait_status 1
pkill -TERM -P $service
wait $service || true
wait_status 2
[ "$(in_root velqua calls --db /var/lib/velqua/calls.db --format csv | wc -l)" -gt 1 ] ||
  fail "no calls stored"
printf 'store = "x.db"\nspool = "s"\nbaud = 1\n' >"$root/tmp/bad.toml"
rc=0; in_root runuser -u velqua -- velqua capture --config /tmp/bad.toml 2>/dev/null || rc=$?
[ $rc -eq 78 ] || fail "a configuration mistake is exit status $rc, not 78"

if in_root test -x /usr/bin/systemd-analyze; then
  in_root systemd-analyze verify /usr/lib/systemd/system/velqua-capture.service ||
    fail "systemd-analyze verify"
  in_root systemd-analyze security --offline=true --threshold=30 \
    /usr/lib/systemd/system/velqua-capture.service >/dev/null || fail "exposure over 3.0"
fi

# An upgrade (the same package again) keeps the edited configuration; a
# purge removes the program and keeps the calls.
in_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --reinstall /tmp/velqua.deb \
  >/dev/null
grep -q "^port = $port$" "$root/etc/velqua/capture.toml" || fail "upgrade lost the configuration"
in_root env DEBIAN_FRONTEND=noninteractive apt-get purge -y -qq velqua >/dev/null
[ ! -e "$root/usr/bin/velqua" ] || fail "purge left the program"
[ -f "$root/var/lib/velqua/calls.db" ] || fail "purge removed the calls"
echo "package root: installed, captured as velqua, status 0/1/2, metrics, 78, upgraded, purged"
